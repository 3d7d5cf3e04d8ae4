// Splitting paths into parts and composing them.

#include "common_new/SafeFunc/split_path.h"
#include "common_new/assert_report.h"
#include "tests/common_new/support.h"

#include <gtest/gtest.h>

namespace ppt::test {
namespace {

Texts parts_of(std::string_view path, std::size_t directory_capacity = 1024) {
    PathParts parts;
    if (!b_splitPath(path, directory_capacity, &parts)) {
        return {};
    }
    return {std::string(parts.drive), std::string(parts.directory), std::string(parts.file_name),
            std::string(parts.extension)};
}

TEST(SplitPath, FindsDriveDirectoryNameAndExtension) {
    const std::pair<const char*, Texts> cases[] = {
        {"C:\\docs\\a.b\\talk.ppt", {"C:", "\\docs\\a.b\\", "talk", ".ppt"}},
        {"\\\\srv\\pub\\x", {"", "\\\\srv\\pub\\", "x", ""}},
        {"archive.tar.gz", {"", "", "archive.tar", ".gz"}},
        {"C:", {"C:", "", "", ""}},
        {"", {"", "", "", ""}},
        {"C:a/b\\.x", {"C:", "a/b\\", "", ".x"}},
        {"C:/docs.d/talk", {"C:", "/docs.d/", "talk", ""}},
        {"talk.", {"", "", "talk", "."}},
        {"ab:c", {"", "", "ab:c", ""}},
    };
    for (const auto& [path, expected] : cases) {
        EXPECT_EQ(parts_of(path), expected) << path;
    }
}

TEST(SplitPath, DoubleByteCharactersNeverSeparate) {
    const CodePage shift_jis(932);
    ASSERT_TRUE(shift_jis.known());
    EXPECT_EQ(parts_of("C:\\\x83\x5C\x83.\\\x83\x5C.ppt"),
              Texts({"C:", "\\\x83\x5C\x83.\\", "\x83\x5C", ".ppt"}));
    EXPECT_EQ(parts_of("a\x83"), Texts({"", "", "a\x83", ""})) << "a lead byte at the end";
}

TEST(SplitPath, RefusesPartsBeyondTheirCapacity) {
    const std::string name(255, 'n');
    const std::string directory = "\\" + std::string(253, 'd') + "\\";
    EXPECT_EQ(parts_of("C:" + directory + name + "." + name.substr(1), 256),
              Texts({"C:", directory, name, "." + name.substr(1)}));
    EXPECT_EQ(parts_of("\\" + directory, 256), Texts());
    EXPECT_EQ(parts_of("\\" + directory, 1024), Texts({"", "\\" + directory, "", ""}));
    EXPECT_EQ(parts_of("\\" + std::string(1022, 'd') + "\\", 1024), Texts());
    EXPECT_EQ(parts_of(name + "n"), Texts());
    EXPECT_EQ(parts_of("a." + name), Texts());
    PathParts parts{"C:", "x", "y", "z"};
    EXPECT_FALSE(b_splitPath("C:\\" + name + "n", 256, &parts));
    EXPECT_EQ(parts.drive, "");
    EXPECT_EQ(parts.directory, "");
}

struct Reports {
    Reports() {
        before = set_assert_handler(
            [](const AssertReport& report) { sources().push_back(report.source); });
    }
    ~Reports() {
        set_assert_handler(before);
        sources().clear();
    }
    static Texts& sources() {
        static Texts list;
        return list;
    }
    AssertHandler before;
};

TEST(MakePath, ComposesWhatItIsGiven) {
    const Reports reports;
    const std::pair<Texts, const char*> cases[] = {
        {{"C:", "\\docs", "talk", "ppt"}, "C:\\docs\\talk.ppt"},
        {{"cd", "\\docs/", "talk", ".ppt"}, "c:\\docs/talk.ppt"},
        {{"", "x", "", ""}, "x\\"},
        {{"", "", "a", ""}, "a"},
        {{"", "", "", ""}, ""},
    };
    for (const auto& [parts, expected] : cases) {
        std::string path = "old";
        EXPECT_EQ(n_makePath(&path, 1024, parts[0], parts[1], parts[2], parts[3]), 0);
        EXPECT_EQ(path, expected);
    }
    EXPECT_EQ(Reports::sources(), Texts());
}

TEST(MakePath, ATrailByteIsNoFinalSeparator) {
    const CodePage shift_jis(932);
    std::string path;
    EXPECT_EQ(n_makePath(&path, 1024, "C:", "\\\x83\x5C", {}, {}), 0);
    EXPECT_EQ(path, "C:\\\x83\x5C\\");
}

TEST(MakePath, ReportsWhatDoesNotFit) {
    const Reports reports;
    std::string path = "old";
    EXPECT_EQ(n_makePath(nullptr, 4, "C:", {}, {}, {}), 22);
    EXPECT_EQ(n_makePath(&path, 0, "C:", {}, {}, {}), 22);
    EXPECT_EQ(path, "old");
    EXPECT_EQ(n_makePath(&path, 4, "C:", "x", {}, {}), 34);
    EXPECT_EQ(path, "");
    EXPECT_EQ(Reports::sources(), Texts(3, "common_new/SafeFunc"));
    EXPECT_EQ(n_makePath(&path, 5, "C:", "x", {}, {}), 0) << "C:x\\ and its terminator";
    EXPECT_EQ(path, "C:x\\");
}

} // namespace
} // namespace ppt::test

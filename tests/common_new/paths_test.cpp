// Comparing link paths, writing them relative to the master and resolving them against it.

#include "common_new/SafeFunc/paths.h"
#include "common_new/SafeFunc/split_path.h"
#include "tests/common_new/support.h"

#include <gtest/gtest.h>

namespace ppt::test {
namespace {

TEST(PathsEqual, IgnoresCaseSeparatorAndTheLeadingDots) {
    struct Case {
        const char* first;
        const char* second;
        bool equal;
    };
    const Case cases[] = {
        {"..\\A\\b.doc", "\\a/B.DOC", true},
        {"C:\\a", "C:\\a\\", false},
        {".\\..\\x", "\\x", true},
        {"./x", "x", false},
        {"./x", ".\\x", false},
        {"..\\..\\x", "\\..\\x", true},
        {"..\\.\\x", "\\x", false},
        {"..", "", true},
        {"a-b", "a_b", false},
        {"\xE4", "\xC4", false},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(b_pathsEqual(each.first, each.second), each.equal)
            << each.first << " and " << each.second;
        EXPECT_EQ(b_pathsEqual(each.second, each.first), each.equal);
    }
    EXPECT_EQ(thrown_by([] { b_pathsEqual(nullptr, ""); }), 8300);
    EXPECT_EQ(thrown_by([] { b_pathsEqual("", nullptr); }), 8300);
}

TEST(PathsEqual, TrailBytesAreNeitherSeparatorsNorLetters) {
    const CodePage shift_jis(932);
    ASSERT_TRUE(shift_jis.known());
    EXPECT_TRUE(b_pathsEqual("\x83\x5C/a", "\x83\x5C\\A"));
    EXPECT_FALSE(b_pathsEqual("\x83\x61", "\x83\x41"));
}

TEST(LinkAddresses, DifferUnlessTheyNameTheSamePlace) {
    struct Case {
        const char* address;
        const char* file_name;
        bool differ;
    };
    const Case cases[] = {
        {"\\docs\\x.xls", "C:\\docs\\x.xls", false},
        {"C:\\docs\\x.xls", "\\docs\\x.xls", true},
        {"D:\\docs\\x.xls", "C:\\docs\\x.xls", true},
        {"C:\\x.xls!Sheet1", "C:\\x.xls!Sheet1", false},
        {"C:\\x.xls!!Sheet1", "C:\\x.xls!Sheet1", false},
        {"!C:\\x.xls!", "C:\\x.xls", true},
        {"!\\x.xls!", "C:\\x.xls", false},
        {"C:\\x.xls!'!Sheet1", "C:\\x.xls!Sheet1", false},
        {"C:\\x.xls!''!Sheet1", "C:\\x.xls!Sheet1", true},
        {"..\\x.xls", "C:/X.XLS", false},
        {"x.xls", "y.xls", true},
        {"", "", false},
        {"!'!", "", false},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(b_linkAddressesDiffer(each.address, each.file_name), each.differ)
            << each.address << " and " << each.file_name;
        const std::string_view name = each.file_name;
        const bool drop = has_drive(name) && !has_drive(each.address);
        EXPECT_EQ(link_address_key(each.address) != link_address_key(name.substr(drop ? 2 : 0)),
                  each.differ);
    }
}

TEST(LinkAddresses, RefuseMissingAndLongTexts) {
    const std::string longest(1023, 'x');
    const std::string too_long(1024, 'x');
    EXPECT_EQ(thrown_by([] { b_linkAddressesDiffer(nullptr, ""); }), 8300);
    EXPECT_EQ(thrown_by([] { b_linkAddressesDiffer("", nullptr); }), 8300);
    EXPECT_FALSE(b_linkAddressesDiffer(longest.c_str(), longest.c_str()));
    EXPECT_EQ(thrown_by([&] { b_linkAddressesDiffer("", too_long.c_str()); }), 7140);
    EXPECT_EQ(error_params(), Texts({too_long, "1024"}));
    EXPECT_EQ(thrown_by([&] { b_linkAddressesDiffer(too_long.c_str(), ""); }), 7140);
}

std::string relative(const std::string& master, const std::string& target) {
    std::string output = "old";
    v_makeRelativePath(target.c_str(), master.c_str(), &output);
    return output;
}

TEST(RelativePath, DropsTheMastersFolderElseItsRoot) {
    const Texts cases[] = {
        {"C:\\Docs\\talk.ppt", "C:\\Docs\\img\\a.gif", "img\\a.gif"},
        {"C:\\Docs\\talk.ppt", "c:\\docs\\IMG\\a.gif", "IMG\\a.gif"},
        {"C:\\Docs\\talk.ppt", "C:\\Other\\a.gif", "\\Other\\a.gif"},
        {"C:\\Docs\\talk.ppt", "D:\\x\\a.gif", "D:\\x\\a.gif"},
        {"\\\\srv\\pub\\t\\q.ppt", "\\\\srv\\pub\\x\\a.gif", "\\x\\a.gif"},
        {"\\\\srv\\pub\\t\\q.ppt", "\\\\srv\\other\\a.gif", "\\\\srv\\other\\a.gif"},
        {"\\\\srv\\pub\\t\\q.ppt", "\\\\SRV\\PUB\\T\\a.gif", "a.gif"},
        {"\\\\srv\\t.ppt", "\\\\srv\\a.gif", "a.gif"},
        {"\\\\srv\\t.ppt", "\\\\other\\a.gif", "\\\\other\\a.gif"},
        {"talk.ppt", "C:\\a.gif", "C:\\a.gif"},
        {"C:\\Docs\\talk.ppt", "C:/Docs/a.gif", "/Docs/a.gif"},
        {"C:\\Docs\\talk.ppt", "", ""},
    };
    for (const Texts& each : cases) {
        EXPECT_EQ(relative(each[0], each[1]), each[2]) << each[0] << " to " << each[1];
    }
}

TEST(RelativePath, RefusesMissingLongAndUnsplittablePaths) {
    std::string output;
    EXPECT_EQ(thrown_by([&] { v_makeRelativePath(nullptr, "m", &output); }), 8300);
    EXPECT_EQ(thrown_by([&] { v_makeRelativePath("t", nullptr, &output); }), 8300);
    EXPECT_EQ(thrown_by([&] { v_makeRelativePath("t", "m", nullptr); }), 8300);
    const std::string too_long(1024, 'x');
    EXPECT_EQ(thrown_by([&] { relative("m", too_long); }), 7140);
    EXPECT_EQ(thrown_by([&] { relative(too_long, "t"); }), 7140);
    const std::string deep = "C:\\" + std::string(254, 'd') + "\\talk.ppt";
    EXPECT_EQ(thrown_by([&] { relative(deep, "t"); }), 8000);
    EXPECT_EQ(relative("C:\\" + std::string(253, 'd') + "\\talk.ppt", "C:\\t"), "\\t");
}

std::string resolve(const std::string& link, const std::string& master) {
    std::string output = "old";
    v_resolveLinkPath(link.c_str(), master.c_str(), &output);
    return output;
}

TEST(ResolveLinkPath, StartsAtTheMasterAndUsesTheUncName) {
    ASSERT_TRUE(platform::map_drive("Z:=\\\\srv\\pub"));
    struct Case {
        const char* master;
        const char* link;
        const char* result;
    };
    const Case cases[] = {
        {"Z:\\talks\\q3.ppt", "media\\clip.avi", "\\\\srv\\pub\\talks\\media\\clip.avi"},
        {"Z:\\talks\\q3.ppt", "\\clips\\a.wav", "\\\\srv\\pub\\clips\\a.wav"},
        {"Z:\\talks\\q3.ppt", "D:\\a.wav", "D:\\a.wav"},
        {"Z:\\talks\\q3.ppt", "Z:\\a.wav", "Z:\\a.wav"},
        {"Z:\\talks\\q3.ppt", "\\\\other\\s\\a.wav", "\\\\other\\s\\a.wav"},
        {"Z:\\talks\\q3.ppt", "//other/s/a.wav", "//other/s/a.wav"},
        {"C:\\talks\\q3.ppt", "media\\clip.avi", "C:\\talks\\media\\clip.avi"},
        {"C:q3.ppt", "a.wav", "C:a.wav"},
        {"\\\\srv\\pub\\q3.ppt", "a.wav", "\\\\srv\\pub\\a.wav"},
        {"q3.ppt", "\\a.wav", "\\a.wav"},
        {"q3.ppt", "", ""},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(resolve(each.link, each.master), each.result) << each.master << " " << each.link;
    }
}

TEST(ResolveLinkPath, CountsOnlyTheFirst255CharactersOfTheMastersFolder) {
    const std::string folder = "\\" + std::string(300, 'd');
    EXPECT_EQ(resolve("a", "C:" + folder + "\\talk.ppt"), "C:" + folder.substr(0, 255) + "\\a");
    const CodePage shift_jis(932);
    const std::string kana = "\\" + std::string(253, 'd') + "\x83\x5C";
    EXPECT_EQ(resolve("a", "C:" + kana + "\\talk.ppt"), "C:" + kana.substr(0, 254) + "\\a")
        << "no half character";
}

TEST(ResolveLinkPath, TheCombinedPathHasAtMost1023Characters) {
    const std::string folder = "C:\\" + std::string(200, 'd') + "\\";
    const std::string tail = "\\" + std::string(100, 'f');
    const auto link_of = [&](std::size_t length) {
        return std::string(length - tail.size(), 'l') + tail;
    };
    const std::size_t room = 1023 - folder.size();
    EXPECT_EQ(resolve(link_of(room), folder + "talk.ppt").size(), 1023u);
    const std::string too_long = link_of(room + 1);
    EXPECT_EQ(thrown_by([&] { resolve(too_long, folder + "talk.ppt"); }), 7140);
    EXPECT_EQ(error_params(), Texts({too_long, std::to_string(1024 - folder.size())}));
}

TEST(ResolveLinkPath, RefusesMissingAndUnsplittablePaths) {
    std::string output;
    EXPECT_EQ(thrown_by([&] { v_resolveLinkPath(nullptr, "m", &output); }), 8300);
    EXPECT_EQ(thrown_by([&] { v_resolveLinkPath("l", nullptr, &output); }), 8300);
    EXPECT_EQ(thrown_by([] { resolve(std::string(256, 'n'), "C:\\m"); }), 8000);
    EXPECT_EQ(thrown_by([] { resolve("C:\\" + std::string(1023, 'd') + "\\x", "C:\\m"); }), 8000);
    const std::string name(200, 'n');
    const std::string too_long = "C:\\" + std::string(1000, 'd') + "\\" + name;
    EXPECT_EQ(thrown_by([&] { resolve(too_long, "C:\\m"); }), 7140);
}

TEST(SpecialCharacter, TheFirstOneDecides) {
    struct Case {
        const char* name;
        bool special;
        Texts params;
    };
    const Case cases[] = {
        {"a[1].doc", true, {"a[1].doc", "2"}},
        {"what?.doc", false, kUnchanged},
        {"a?b[c", false, kUnchanged},
        {"plain.doc", false, kUnchanged},
        {"", false, kUnchanged},
        {"'", true, {"'", "1"}},
    };
    for (const Case& each : cases) {
        mark_error_params();
        EXPECT_EQ(b_hasSpecialCharacter(each.name), each.special) << each.name;
        EXPECT_EQ(error_params(), each.params) << each.name;
    }
    const CodePage shift_jis(932);
    EXPECT_FALSE(b_hasSpecialCharacter("\x83\x5B")) << "the trail byte is '['";
}

TEST(DriveParameter, IsTheDriveOfAPathThatSplits) {
    v_setErrorParamDriveAndNumber("C:\\a\\b", 512);
    EXPECT_EQ(error_params(), Texts({"C:", "512"}));
    v_setErrorParamDriveAndNumber("\\\\srv\\pub\\b", 0);
    EXPECT_EQ(error_params(), Texts({"", "0"}));
    mark_error_params();
    v_setErrorParamDriveAndNumber("C:\\" + std::string(255, 'd') + "\\b", 0);
    EXPECT_EQ(error_params(), kUnchanged);
}

} // namespace
} // namespace ppt::test

// Where the targets of links lie, for presentations on a drive, on a share and on a path of this
// machine.
#include "common_new/assert_report.h"
#include "plugin/exports.h"
#include "tests/common_new/support.h"
#include "tests/support/drive_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

namespace ppt::test {
namespace {

constexpr std::size_t kFoundSize = 260;
constexpr char kUntouched = 'x';

// The same folder under its three names; separators of a name are those that the system gives back.
enum class Place { drive, share, machine };
#if defined(_WIN32) // where each path is of a drive or a share
constexpr Place kPlaces[] = {Place::drive, Place::share};
#else
constexpr Place kPlaces[] = {Place::drive, Place::share, Place::machine};
#endif

class TargetAccess : public testing::Test {
  protected:
    TargetAccess()
        : directory_before_(std::filesystem::current_path())
        , reports_before_(set_assert_handler(
              [](const AssertReport& report) { reports().push_back(report.expression); })) {
        for (const char* folder : {"Docs/img", "Docs/we!rd", "shared", "clips"}) {
            std::filesystem::create_directories(folder_.file(folder));
        }
        for (const char* file : {"Docs/img/a.gif", "shared/clip.avi", "clips/a.wav",
                                 "Docs/Book.xls", "Docs/a!b.doc", "Docs/we!rd/Book.xls"}) {
            folder_.write(file, "content");
        }
        mark_error_params();
    }
    ~TargetAccess() override {
        std::filesystem::current_path(directory_before_);
        set_assert_handler(reports_before_);
        reports().clear();
    }

    // The expressions of the assertion reports.
    static Texts& reports() {
        static Texts list;
        return list;
    }

    // A name below the folder, written with backslashes, as a full path.
    std::string at(Place place, std::string name) const {
        if (place != Place::machine) {
            return (place == Place::drive ? "Q:\\" : "\\\\srv\\pub\\") + name;
        }
        std::replace(name.begin(), name.end(), '\\', '/');
        return folder_.file(name);
    }

    std::int32_t access(const std::string& target, const std::string& master) {
        buffer_.fill(kUntouched);
        return j_accessTargetFile(target.c_str(), master.c_str(), buffer_.data(), ++fourth_);
    }

    // What was written: a path with zeros behind it in 260 bytes, nothing more; or nothing at all.
    std::optional<std::string> written() const {
        const auto is_untouched = [](char c) { return c == kUntouched; };
        const auto end_of_found = buffer_.begin() + kFoundSize;
        EXPECT_TRUE(std::all_of(end_of_found, buffer_.end(), is_untouched));
        if (std::all_of(buffer_.begin(), end_of_found, is_untouched)) {
            return std::nullopt;
        }
        const auto end = std::find(buffer_.begin(), end_of_found, '\0');
        EXPECT_NE(end, end_of_found);
        EXPECT_TRUE(std::all_of(end, end_of_found, [](char c) { return c == '\0'; }));
        return std::string(buffer_.begin(), end);
    }

    bool is_in(const std::string& folder) const {
        const std::filesystem::path mark = std::filesystem::path(folder_.file(folder)) / "mark";
        std::ofstream(mark) << "here";
        const bool found = std::filesystem::exists("mark");
        std::filesystem::remove(mark);
        return found;
    }

    const TempFolder folder_{make_drive_folder("common_new")};

  private:
    const std::filesystem::path directory_before_;
    const AssertHandler reports_before_;
    std::array<char, kFoundSize + 40> buffer_{};
    std::int32_t fourth_ = -2; // may hold anything
};

using Written = std::optional<std::string>;

TEST_F(TargetAccess, FindsFilesAndFoldersFromTheMastersFolder) {
    const std::pair<const char*, const char*> cases[] = {
        {"img\\a.gif", "Docs\\img\\a.gif"},
        {"img/a.gif", "Docs\\img\\a.gif"},
        {"IMG\\A.GIF", "Docs\\IMG\\A.GIF"},
        {"..\\shared\\.\\clip.avi", "shared\\clip.avi"},
        {"img", "Docs\\img"},
        {"", "Docs"},
        {"Book.xls!Sheet1!R1C1", "Docs\\Book.xls"},
        {"Book.xls!Sheet1", "Docs\\Book.xls"},
        {"a!b.doc", "Docs\\a!b.doc"}, // no item: the file is there
        {"we!rd\\Book.xls", "Docs\\we!rd\\Book.xls"},
        {"we!rd\\Book.xls!Sheet1", "Docs\\we"}, // the first "!" counts
    };
    for (const Place place : kPlaces) {
        for (const auto& [target, found] : cases) {
            EXPECT_EQ(access(target, at(place, "Docs\\talk.ppt")), 0) << target;
            EXPECT_EQ(written(), at(place, found)) << target;
        }
        EXPECT_EQ(access(at(place, "Docs\\..\\shared\\clip.avi"), at(place, "Docs\\talk.ppt")), 0);
        EXPECT_EQ(written(), at(place, "shared\\clip.avi"));
    }
}

TEST_F(TargetAccess, ALeadingBackslashMeansTheRootOfTheMaster) {
    for (const Place place : {Place::drive, Place::share}) {
        EXPECT_EQ(access("\\clips\\a.wav", at(place, "Docs\\talk.ppt")), 0);
        EXPECT_EQ(written(), at(place, "clips\\a.wav"));
    }
}

TEST_F(TargetAccess, NoTargetInARootIsTheRoot) {
    EXPECT_EQ(access("", "Q:\\talk.ppt"), 0);
    EXPECT_EQ(written(), "Q:\\");
    EXPECT_EQ(access("", "\\\\srv\\pub\\talk.ppt"), 0);
    EXPECT_EQ(written(), "\\\\srv\\pub");
}

#if !defined(_WIN32)
TEST_F(TargetAccess, APathOfThisMachineHasItsOwnRoot) {
    std::string below_root = folder_.file("clips/a.wav");
    std::replace(below_root.begin(), below_root.end(), '/', '\\');
    EXPECT_EQ(access(below_root, at(Place::machine, "Docs\\talk.ppt")), 0);
    EXPECT_EQ(written(), folder_.file("clips/a.wav"));
    EXPECT_EQ(access("", "/talk.ppt"), 0);
    EXPECT_EQ(written(), "/");
    EXPECT_EQ(access("a?b.doc", at(Place::machine, "Docs\\talk.ppt")), 7510)
        << "its names may hold what those of drives may not";
}
#endif

TEST_F(TargetAccess, WhatIsNotThereIsNamedAndNothingIsWritten) {
    const char* const cases[] = {"gone.doc",  "gone\\a.doc",    "Gone.xls!Sheet1",
                                 "Book.xls!", "Book.xls!!R1C1", "Book.xls\\a.doc"};
    for (const Place place : kPlaces) {
        for (const char* const target : cases) {
            std::filesystem::current_path(folder_.path());
            EXPECT_EQ(access(target, at(place, "Docs\\talk.ppt")), 7510) << target;
            EXPECT_EQ(error_params(), Texts({at(place, std::string("Docs\\") + target)}));
            EXPECT_EQ(written(), Written());
            EXPECT_TRUE(is_in("Docs"));
        }
    }
    EXPECT_EQ(access("X:\\a.doc", "Q:\\Docs\\talk.ppt"), 7510) << "a drive that is not mapped";
    EXPECT_EQ(access("\\\\srv\\other\\a.doc", "Q:\\Docs\\talk.ppt"), 7510);
}

TEST_F(TargetAccess, TheMastersFolderStaysCurrent) {
    EXPECT_EQ(access("img\\a.gif", "Q:\\Docs\\talk.ppt"), 0);
    EXPECT_TRUE(is_in("Docs"));
    // The drive remembers its own directory when another becomes current.
    EXPECT_EQ(access("Q:img\\a.gif", "\\\\srv\\pub\\shared\\talk.ppt"), 0);
    EXPECT_EQ(written(), "Q:\\Docs\\img\\a.gif");
    EXPECT_TRUE(is_in("shared"));
    std::array<char, kFoundSize> current{};
    GetCurrentDirectoryA(static_cast<DWORD>(current.size()), current.data());
    EXPECT_STREQ(current.data(), "\\\\srv\\pub\\shared");
}

TEST_F(TargetAccess, AFolderThatCannotBeMadeCurrentEndsTheSearch) {
    std::filesystem::current_path(folder_.path());
    for (const Place place : kPlaces) {
        const std::string folder = at(place, "gone\\");
        EXPECT_EQ(access(at(place, "Docs\\img\\a.gif"), folder + "talk.ppt"), 7520);
        EXPECT_EQ(error_params(), Texts({folder}));
        EXPECT_EQ(written(), Written());
    }
    EXPECT_EQ(access("img\\a.gif", "Q:\\Docs\\Book.xls\\talk.ppt"), 7520) << "a file is no folder";
    EXPECT_EQ(access("img\\a.gif", "X:\\talk.ppt"), 7520);
    EXPECT_EQ(access("a.gif", "talk.ppt"), 7520);
    EXPECT_EQ(error_params(), Texts({""}));
    EXPECT_EQ(written(), Written());
    EXPECT_TRUE(is_in(""));
}

TEST_F(TargetAccess, InvalidPathsAreWrittenAllTheSame) {
    EXPECT_EQ(access("a[1]<.doc", "Q:\\Docs\\talk.ppt"), 7580);
    EXPECT_EQ(written(), "Q:\\Docs\\a[1]<.doc");
    EXPECT_EQ(error_params(), Texts({"Q:\\Docs\\a[1]<.doc", "10"}));
    EXPECT_EQ(access("a?b.doc", "\\\\srv\\pub\\Docs\\talk.ppt"), 7585);
    EXPECT_EQ(written(), "\\\\srv\\pub\\Docs\\a?b.doc");
}

TEST_F(TargetAccess, PathsHaveRoomFor259Characters) {
    const std::string longest(kFoundSize - 1 - std::string("Q:\\Docs\\").size(), 'n');
    folder_.write("Docs/" + longest, "content");
    EXPECT_EQ(access(longest, "Q:\\Docs\\talk.ppt"), 0);
    EXPECT_EQ(written(), "Q:\\Docs\\" + longest);
    EXPECT_EQ(access(longest + "!item", "Q:\\Docs\\talk.ppt"), 5100);
    EXPECT_EQ(error_params(), Texts({longest + "!item", "260"}));
    EXPECT_EQ(written(), Written());
    EXPECT_TRUE(is_in("Docs"));

    std::filesystem::current_path(folder_.path());
    EXPECT_EQ(access(std::string(1024, 'n'), "Q:\\Docs\\talk.ppt"), 7140);
    EXPECT_TRUE(is_in("")) << "refused before anything was done";
    EXPECT_EQ(access(std::string(1023, 'n'), "Q:\\Docs\\talk.ppt"), 5100);
}

TEST_F(TargetAccess, AMasterThatDoesNotSplitIsRefused) {
    std::filesystem::current_path(folder_.path());
    const std::string masters[] = {
        "Q:\\" + std::string(1023, 'd') + "\\talk.ppt",
        "Q:\\Docs\\" + std::string(256, 'n') + ".ppt", "Q:\\Docs\\talk." + std::string(255, 'e'),
        "Q:\\" + std::string(1021, 'd') + "\\talk.ppt", // 1023 characters and the drive
    };
    for (const std::string& master : masters) {
        EXPECT_EQ(access("img\\a.gif", master), 8000);
        EXPECT_EQ(written(), Written());
    }
    EXPECT_EQ(error_params(), kUnchanged);
    EXPECT_TRUE(is_in(""));
}

TEST_F(TargetAccess, MissingArgumentsAreReportedInTheirOrder) {
    char found[kFoundSize] = "as before";
    EXPECT_EQ(j_accessTargetFile(nullptr, nullptr, nullptr, 0), 8300);
    EXPECT_EQ(j_accessTargetFile("a", nullptr, nullptr, 0), 8300);
    EXPECT_EQ(j_accessTargetFile("a", "Q:\\Docs\\talk.ppt", nullptr, 0), 8300);
    EXPECT_EQ(j_accessTargetFile("a", nullptr, found, 0), 8300);
    EXPECT_EQ(reports(), Texts({"pc_targetFile != NULL", "pc_masterFile != NULL",
                                "pc_foundFile != NULL", "pc_masterFile != NULL"}));
    EXPECT_STREQ(found, "as before");
    EXPECT_EQ(error_params(), kUnchanged);
}

} // namespace
} // namespace ppt::test

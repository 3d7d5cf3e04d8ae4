// Where the paths of the documents lead on this machine: drives, shares, letter case, full paths
// and the current directory.
#include "tests/posix/kernel_fixture.h"

#include "platform/posix/paths.h"

#include <chrono>
#include <ctime>
#include <filesystem>
#include <thread>

namespace {

using platform::map_drive;
using platform::to_native_path;
using posix_test::current_directory;
using posix_test::full_path;

class Paths : public posix_test::KernelFixture {};

TEST_F(Paths, DrivesAndSharesLeadToTheirFolders) {
    EXPECT_EQ(to_native_path("Z:\\a\\b.ppt"), at("a/b.ppt"));
    EXPECT_EQ(to_native_path("z:/a/b.ppt"), at("a/b.ppt"));
    EXPECT_EQ(to_native_path("\\\\SRV\\Pub\\a\\b.ppt"), at("a/b.ppt"));
    EXPECT_EQ(to_native_path("Z:\\..\\..\\x"), at("x")); // never above the drive
    EXPECT_EQ(to_native_path(folder_ + "/a\\b.ppt"), at("a/b.ppt"));

    ASSERT_TRUE(map_drive("Y:=\\\\srv\\pub\\deep"));
    EXPECT_EQ(to_native_path("Y:\\x.gif"), at("deep/x.gif"));
    ASSERT_TRUE(map_drive("Y:=/"));
    EXPECT_EQ(to_native_path("Y:\\no-such-name"), "/no-such-name");
    EXPECT_EQ(to_native_path("Y:\\"), "/");
}

TEST_F(Paths, AnUnknownDriveOrShareIsAMissingPath) {
    for (const char* path : {"Q:\\a.ppt", "\\\\srv\\other\\a.ppt", "\\\\srv", ""}) {
        SetLastError(NO_ERROR);
        EXPECT_EQ(to_native_path(path), "") << path;
        EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND) << path;
    }
}

TEST_F(Paths, EntriesOfAnotherFormAreRefused) {
    for (const char* entry : {"", "Z:", "Z=/mnt", "ZZ:=/mnt", "Z:=mnt", "Z:=\\\\srv",
                              "\\\\srv=/mnt", "\\\\srv\\pub\\x=/mnt", "\\\\srv\\pub=\\\\a\\b"}) {
        EXPECT_FALSE(map_drive(entry)) << entry;
    }
    EXPECT_EQ(to_native_path("Z:\\a"), at("a"));
}

TEST_F(Paths, ANameIsFoundInAnyLetterCase) {
    make_folder("Media/Clips");
    make_file("Media/Clips/Intro.AVI");
    make_file("\xC3\x84rger.doc");
    EXPECT_EQ(to_native_path("Z:\\MEDIA\\clips\\intro.avi"), at("Media/Clips/Intro.AVI"));
    EXPECT_EQ(to_native_path(at("media/clips/INTRO.avi")), at("Media/Clips/Intro.AVI"));
    EXPECT_EQ(to_native_path("Z:\\\xC3\xA4RGER.doc"), at("\xC3\x84rger.doc"));
    // From the first missing name on, the rest is as given.
    EXPECT_EQ(to_native_path("Z:\\media\\New\\Clips"), at("Media/New/Clips"));

    // The exact spelling wins over another, and of two others the first in byte order.
    make_file("same.txt");
    make_file("Same.txt");
    EXPECT_EQ(to_native_path("Z:\\same.txt"), at("same.txt"));
    EXPECT_EQ(to_native_path("Z:\\SAME.TXT"), at("Same.txt"));
}

// Long enough for the names of a folder to be remembered, by a clock that may lag a little.
void settle() {
    std::this_thread::sleep_for(std::chrono::milliseconds(3100));
}

TEST_F(Paths, ManyMissingNamesCostOneReadingOfTheirFolder) {
    for (int i = 0; i < 5000; ++i) {
        make_file("file " + std::to_string(i));
    }
    settle();
    const auto processor_time_of = [this](int count) {
        const std::clock_t start = std::clock();
        for (int i = 0; i < count; ++i) {
            const std::string name = "missing " + std::to_string(i);
            EXPECT_EQ(to_native_path("Z:\\" + name), at(name));
        }
        return std::clock() - start;
    };
    const std::clock_t of_one = processor_time_of(1);
    EXPECT_LT(processor_time_of(2000), 200 * of_one);
}

TEST_F(Paths, ARememberedFolderIsReadAgainWhenItChanges) {
    make_file("Old.doc");
    settle();
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(to_native_path("Z:\\OLD.DOC"), at("Old.doc"));
        EXPECT_EQ(to_native_path("Z:\\NEW.DOC"), at("NEW.DOC"));
    }
    make_file("New.doc");
    EXPECT_EQ(to_native_path("Z:\\NEW.DOC"), at("New.doc"));
    std::filesystem::remove(at("Old.doc"));
    EXPECT_EQ(to_native_path("Z:\\OLD.DOC"), at("OLD.DOC"));
}

TEST_F(Paths, AFileToWriteKeepsItsSpellingOnThisMachineOnly) {
    make_folder("Out");
    make_file("Out/talk.ppt");
    EXPECT_EQ(platform::native_path_to_write(at("out/Talk.ppt")), at("Out/Talk.ppt"));
    EXPECT_EQ(platform::native_path_to_write("Z:\\out\\Talk.ppt"), at("Out/talk.ppt"));
}

TEST_F(Paths, AnExistingFileOfThisMachineNamesItself) {
    make_file("back\\slash.ppt");
    EXPECT_EQ(to_native_path(at("back\\slash.ppt")), at("back\\slash.ppt"));
    make_file("\xE9.ppt"); // not UTF-8
    EXPECT_EQ(to_native_path(at("\xE9.ppt")), at("\xE9.ppt"));
}

TEST_F(Paths, BytesOfAnotherNameAreNotThatName) {
    ASSERT_TRUE(platform::set_ansi_code_page(1252));
    const std::string umlaut = at("\xC3\xA4.ppt"); // U+00E4; the same bytes are two letters in 1252
    const std::string two_letters = at("\xC3\x83\xC2\xA4.ppt");
    make_file("\xC3\xA4.ppt");
    EXPECT_EQ(to_native_path(at("\xE4.ppt")), umlaut);
    EXPECT_EQ(to_native_path(at("\xC3\xA4.ppt")), two_letters);
    EXPECT_EQ(platform::native_path_to_write(at("\xC3\xA4.ppt")), two_letters);
    make_file("\xE6\x97\xA5.ppt"); // a name that 1252 lacks
    EXPECT_EQ(to_native_path(at("\xE6\x97\xA5.ppt")), at("\xE6\x97\xA5.ppt"));
    EXPECT_NE(platform::native_path_to_write(at("\xE6\x97\xA5.ppt")), at("\xE6\x97\xA5.ppt"));
    make_file("\xE4.ppt"); // not UTF-8, and a file has the name that 1252 reads
    EXPECT_EQ(to_native_path(at("\xE4.ppt")), umlaut);
}

TEST_F(Paths, NamesThatWindowsForbidsAreInvalidOnDrivesAndShares) {
    for (const char* path : {"Q:\\a<b", "Z:\\a?\\b", "Z:\\a|b", "\\\\srv\\pub\\*", "Z:\\a\"",
                             "Z:\\a\tb", "Z:\\http:\\host"}) {
        SetLastError(NO_ERROR);
        EXPECT_EQ(to_native_path(path), "") << path;
        EXPECT_EQ(GetLastError(), ERROR_INVALID_NAME) << path;
    }
    EXPECT_EQ(to_native_path(at("what?*")), at("what?*"));
}

TEST_F(Paths, TrailBytesAreNoSeparators) {
    make_file("\xE8\xA1\xA8.doc"); // in 932 the bytes 95 5C; 5C alone is the backslash
    ASSERT_TRUE(platform::set_ansi_code_page(932));
    EXPECT_EQ(to_native_path("Z:\\\x95\x5C.doc"), at("\xE8\xA1\xA8.doc"));
    EXPECT_EQ(full_path("Z:\\\x95\x5C\\..\\x"), "Z:\\x");
}

TEST_F(Paths, TrailBytesAreNoDotsThatEndAName) {
    ASSERT_TRUE(platform::set_ansi_code_page(932));
    EXPECT_EQ(full_path("Z:\\\x81.\\x"), "Z:\\\x81.\\x");
    EXPECT_EQ(full_path("Z:\\\x81. ."), "Z:\\\x81.");
}

TEST_F(Paths, FullPathsAreNormalised) {
    EXPECT_EQ(full_path("C:\\a\\.\\b\\..\\c.doc"), "C:\\a\\c.doc");
    EXPECT_EQ(full_path("C:/a//b/"), "C:\\a\\b\\");
    EXPECT_EQ(full_path("C:\\.."), "C:\\");
    EXPECT_EQ(full_path("C:\\a.\\b. ."), "C:\\a\\b");
    EXPECT_EQ(full_path("C:\\a .\\b\\.."), "C:\\a"); // the end is that of the result
    EXPECT_EQ(full_path("C:\\a..\\..."), "C:\\a");
    EXPECT_EQ(full_path("\\\\srv\\pub\\..\\..\\x"), "\\\\srv\\pub\\x");
    EXPECT_EQ(full_path("\\\\srv/pub"), "\\\\srv\\pub");
    EXPECT_EQ(full_path("/a/./b/../c. "), "/a/c. ");
    EXPECT_EQ(full_path("/a\\b"), "/a/b");
    EXPECT_EQ(full_path("/.."), "/");
}

TEST_F(Paths, FullPathsStartFromTheCurrentDirectory) {
    make_folder("talks");
    ASSERT_TRUE(SetCurrentDirectoryA("Z:\\talks\\"));
    EXPECT_EQ(full_path("a.gif"), "Z:\\talks\\a.gif");
    EXPECT_EQ(full_path("..\\a.gif"), "Z:\\a.gif");
    EXPECT_EQ(full_path("\\a.gif"), "Z:\\a.gif");
    EXPECT_EQ(full_path("z:a.gif"), "z:\\talks\\a.gif");
    EXPECT_EQ(full_path("C:a.gif"), "C:\\a.gif");

    ASSERT_TRUE(SetCurrentDirectoryA("\\\\srv\\pub\\talks"));
    EXPECT_EQ(full_path("a.gif"), "\\\\srv\\pub\\talks\\a.gif");
    EXPECT_EQ(full_path("\\a.gif"), "\\\\srv\\pub\\a.gif");
    EXPECT_EQ(full_path("Z:a.gif"), "Z:\\a.gif");
    ASSERT_TRUE(SetEnvironmentVariableA("=z:", "Z:\\talks"));
    EXPECT_EQ(full_path("Z:a.gif"), "Z:\\talks\\a.gif");
    EXPECT_FALSE(SetEnvironmentVariableA("=Z:", "C:\\talks"));
    EXPECT_FALSE(SetEnvironmentVariableA("PATH", "Z:\\talks"));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});

    ASSERT_TRUE(SetCurrentDirectoryA(at("talks").c_str()));
    EXPECT_EQ(full_path("img\\a.gif"), at("talks/img/a.gif"));
    EXPECT_EQ(full_path("\\a.gif"), "/a.gif");
}

TEST_F(Paths, TheFullPathBufferRule) {
    char buffer[10] = "untouched";
    EXPECT_EQ(GetFullPathNameA("C:\\a\\b.c", 8, buffer, nullptr), 9u);
    EXPECT_STREQ(buffer, "untouched");
    char* file = nullptr;
    EXPECT_EQ(GetFullPathNameA("C:\\a\\b.c", 9, buffer, &file), 8u);
    EXPECT_STREQ(file, "b.c");
    EXPECT_EQ(GetFullPathNameA("C:\\a\\", 9, buffer, &file), 5u);
    EXPECT_EQ(file, nullptr);
    for (const char* const nothing : {"", "   "}) {
        EXPECT_EQ(GetFullPathNameA(nothing, 9, buffer, nullptr), 0u);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_NAME);
    }
}

TEST_F(Paths, TheCurrentDirectoryIsKeptAsItWasGiven) {
    make_folder("Talks");
    EXPECT_EQ(current_directory(), start_.string());
    ASSERT_TRUE(SetCurrentDirectoryA("Z:\\talks\\"));
    EXPECT_EQ(current_directory(), "Z:\\talks");
    EXPECT_EQ(std::filesystem::current_path(), at("Talks"));
    ASSERT_TRUE(SetCurrentDirectoryA("Z:\\"));
    EXPECT_EQ(current_directory(), "Z:\\");
    ASSERT_TRUE(SetCurrentDirectoryA("talks"));
    EXPECT_EQ(current_directory(), "Z:\\talks");

    make_file("file");
    const auto error_for = [](const char* path) {
        SetLastError(NO_ERROR);
        return SetCurrentDirectoryA(path) ? NO_ERROR : GetLastError();
    };
    EXPECT_EQ(error_for("Z:\\file"), ERROR_DIRECTORY);
    EXPECT_EQ(error_for("Z:\\gone"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(error_for("Z:\\gone\\deeper"), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(error_for(""), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(current_directory(), "Z:\\talks");
}

TEST_F(Paths, UniversalNamesComeFromTheSameTable) {
    ASSERT_TRUE(map_drive("X:=\\\\srv\\pub"));
    alignas(UNIVERSAL_NAME_INFOA) char buffer[64];
    const auto ask = [&](const char* path, DWORD& size) {
        return WNetGetUniversalNameA(path, UNIVERSAL_NAME_INFO_LEVEL, buffer, &size);
    };
    DWORD size = sizeof buffer;
    ASSERT_EQ(ask("x:\\talks\\clip.avi", size), NO_ERROR);
    EXPECT_STREQ(reinterpret_cast<UNIVERSAL_NAME_INFOA*>(buffer)->lpUniversalName,
                 "\\\\srv\\pub\\talks\\clip.avi");
    ASSERT_EQ(ask("X:", size), NO_ERROR);
    EXPECT_STREQ(reinterpret_cast<UNIVERSAL_NAME_INFOA*>(buffer)->lpUniversalName, "\\\\srv\\pub");

    EXPECT_EQ(ask("Z:\\talks", size), ERROR_NOT_CONNECTED);
    EXPECT_EQ(ask("Q:\\talks", size), ERROR_NOT_CONNECTED);
    EXPECT_EQ(ask("\\\\srv\\pub\\a", size), ERROR_BAD_DEVICE);
    EXPECT_EQ(ask("a.doc", size), ERROR_BAD_DEVICE);
    EXPECT_EQ(WNetGetUniversalNameA("X:\\", 7, buffer, &size), ERROR_INVALID_LEVEL);

    const DWORD needed = sizeof(UNIVERSAL_NAME_INFOA) + sizeof "\\\\srv\\pub\\a";
    size = needed - 1;
    EXPECT_EQ(ask("X:\\a", size), ERROR_MORE_DATA);
    EXPECT_EQ(size, needed);
    EXPECT_EQ(ask("X:\\a", size), NO_ERROR);
}

} // namespace

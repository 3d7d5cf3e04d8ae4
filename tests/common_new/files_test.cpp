// Copying files, full paths and the existence check on real files, behind drives of their own.

#include "common_new/common/files.h"
#include "tests/common_new/support.h"
#include "tests/support/drive_folder.h"

#include <gtest/gtest.h>

namespace ppt::test {
namespace {

class Files : public testing::Test {
  protected:
    Files()
        : directory_before_(std::filesystem::current_path()) {
        mark_error_params();
    }
    ~Files() override { std::filesystem::current_path(directory_before_); }

    const TempFolder folder_{make_drive_folder("common_new")};

  private:
    const std::filesystem::path directory_before_;
};

TEST_F(Files, CopyReplacesAnExistingDestinationUnlessForbidden) {
    folder_.write("a.ppt", "new content");
    folder_.write("b.ppt", "old");
    EXPECT_EQ(j_copyFile("Q:\\a.ppt", "Q:\\b.ppt", true), 5400);
    EXPECT_EQ(error_params(), Texts({"Q:\\a.ppt", "Q:\\b.ppt"}));
    EXPECT_EQ(folder_.read("b.ppt"), "old");
    mark_error_params();
    EXPECT_EQ(j_copyFile("Q:\\a.ppt", "Q:\\b.ppt", false), 0);
    EXPECT_EQ(folder_.read("b.ppt"), "new content");
    EXPECT_EQ(j_copyFile("Q:\\a.ppt", "Q:\\c.ppt", true), 0);
    EXPECT_EQ(folder_.read("c.ppt"), "new content");
    EXPECT_EQ(error_params(), kUnchanged);
}

TEST_F(Files, CopyTellsWhyItFailed) {
    folder_.write("a.ppt", "content");
    EXPECT_EQ(j_copyFile(nullptr, "Q:\\b.ppt", false), 8300);
    EXPECT_EQ(j_copyFile("Q:\\a.ppt", nullptr, false), 8300);
    EXPECT_EQ(error_params(), kUnchanged);
    EXPECT_EQ(j_copyFile("Q:\\gone.ppt", "Q:\\b.ppt", false), 7510);
    ASSERT_EQ(error_params().size(), 3u);
    EXPECT_EQ(error_params()[1], "2");
    EXPECT_EQ(j_copyFile("Q:\\a.ppt", "Q:\\gone\\b.ppt", false), 7520);
    std::filesystem::create_directory(folder_.file("folder"));
    EXPECT_EQ(j_copyFile("Q:\\a.ppt", "Q:\\folder", false), 6100);
    EXPECT_EQ(error_params(), Texts({"Q:\\folder", user_name()}));
}

TEST_F(Files, CopyOntoAFileInUseIsDenied) {
    IStorage* opened = nullptr;
    ASSERT_EQ(StgCreateDocfile(WIDE("Q:\\used.ppt"),
                               STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0, &opened),
              S_OK);
    const ComPtr<IStorage> user(opened);
    folder_.write("a.ppt", "content");
    EXPECT_EQ(j_copyFile("Q:\\a.ppt", "Q:\\used.ppt", false), 6100);
    EXPECT_EQ(error_params(), Texts({"Q:\\used.ppt", user_name()}));
}

TEST_F(Files, FullPathStartsAtTheCurrentDirectory) {
    std::filesystem::create_directory(folder_.file("Docs"));
    ASSERT_NE(SetCurrentDirectoryA("Q:\\Docs"), FALSE);
    const std::pair<const char*, const char*> cases[] = {
        {"..\\b.doc", "Q:\\b.doc"},
        {"img\\.\\a.gif", "Q:\\Docs\\img\\a.gif"},
        {"\\x\\a.gif", "Q:\\x\\a.gif"},
        {"Q:\\x\\..\\..\\y", "Q:\\y"},
        {"", "Q:\\Docs"},
    };
    for (const auto& [path, expected] : cases) {
        std::string full_path = "old";
        EXPECT_EQ(j_getFullPath(&full_path, path, 260), 0) << path;
        EXPECT_EQ(full_path, expected);
    }
}

TEST_F(Files, FullPathNeedsRoomForItsTerminator) {
    std::string full_path = "old";
    const std::string too_long = "Q:\\" + std::string(257, 'x');
    EXPECT_EQ(j_getFullPath(&full_path, too_long.c_str(), 260), 5100);
    EXPECT_EQ(error_params(), Texts({too_long, "260"}));
    EXPECT_EQ(full_path, "old");
    EXPECT_EQ(j_getFullPath(&full_path, too_long.substr(1).c_str(), 0), 5100);
    const std::string longest = "Q:\\" + std::string(256, 'x');
    EXPECT_EQ(j_getFullPath(&full_path, longest.c_str(), 260), 0);
    EXPECT_EQ(full_path, longest);
    EXPECT_EQ(j_getFullPath(nullptr, "a", 260), 8300);
    EXPECT_EQ(j_getFullPath(&full_path, nullptr, 260), 8300);
}

TEST_F(Files, ExistenceTellsMissingFromInvalid) {
    folder_.write("a.doc", "");
    EXPECT_EQ(j_checkFileExists("Q:\\a.doc"), 0);
    EXPECT_EQ(j_checkFileExists("Q:\\"), 0);
    EXPECT_EQ(error_params(), kUnchanged);
    for (const char* missing : {"Q:\\b.doc", "Q:\\gone\\a.doc"}) {
        EXPECT_EQ(j_checkFileExists(missing), 7510);
        EXPECT_EQ(error_params(), Texts({missing}));
    }
    EXPECT_EQ(j_checkFileExists("Q:\\a[1]<.doc"), 7580);
    EXPECT_EQ(error_params(), Texts({"Q:\\a[1]<.doc", "5"}));
    EXPECT_EQ(j_checkFileExists("Q:\\a?b.doc"), 7585);
    ASSERT_EQ(error_params().size(), 3u);
    EXPECT_EQ(error_params()[1], "7b");
}

} // namespace
} // namespace ppt::test

// What the file system denies an ordinary user, with the modes and users of POSIX.
#include "common_new/common/storage.h"
#include "plugin/exports.h"
#include "tests/common_new/support.h"
#include "tests/common_new/unprivileged.h"
#include "tests/support/drive_folder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace ppt::test {
namespace {

class Permissions : public testing::Test {
  protected:
    Permissions()
        : directory_before_(std::filesystem::current_path()) {
        chmod(folder_.path().c_str(), 0755);
    }
    ~Permissions() override { std::filesystem::current_path(directory_before_); }

    const TempFolder folder_{make_drive_folder("common_new")};

  private:
    const std::filesystem::path directory_before_;
};

TEST_F(Permissions, AReadOnlyFileOpensForReadingOnly) {
    const DocumentPath path("Q:\\talk.ppt");
    {
        ComPtr<IStorage> root;
        ASSERT_EQ(StgCreateDocfile(WIDE("Q:\\talk.ppt"),
                                   STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0,
                                   root.put()),
                  S_OK);
    }
    chmod(folder_.file("talk.ppt").c_str(), 0444);
    const Unprivileged user;
    ComPtr<IStorage> root;
    EXPECT_EQ(j_openStorageFile(WIDE("Q:\\talk.ppt"), true, root.put()), 0);
    root.reset();
    EXPECT_EQ(j_openStorageFile(WIDE("Q:\\talk.ppt"), false, root.put()), 6300);
    EXPECT_EQ(error_params(), Texts({"Q:\\talk.ppt", user_name()}));
}

TEST_F(Permissions, ATargetThatMayNotBeReadIsWrittenAllTheSame) {
    std::filesystem::create_directory(folder_.file("locked"));
    folder_.write("locked/x.doc", "content");
    chmod(folder_.file("locked").c_str(), 0);
    {
        const Unprivileged user;
        const std::string places[] = {"Q:\\", "\\\\srv\\pub\\", folder_.path() + '/'};
        for (const std::string& place : places) {
            const std::string target = place + "locked" + place.back() + "x.doc";
            char found[260] = {};
            EXPECT_EQ(j_accessTargetFile("locked\\x.doc", (place + "talk.ppt").c_str(), found, 0),
                      6100);
            EXPECT_EQ(found, target);
            EXPECT_EQ(error_params(), Texts({target, user_name()}));
        }
        char found[260] = "as before";
        EXPECT_EQ(j_accessTargetFile("x.doc", "Q:\\locked\\talk.ppt", found, 0), 7520);
        EXPECT_STREQ(found, "as before");
    }
    chmod(folder_.file("locked").c_str(), 0700);
}

} // namespace
} // namespace ppt::test

// Disks that fail or fill up under the plug-in: whichever read, write or growth of a file fails,
// the call says so, the loaded file keeps its bytes, nothing stays open, and the next call works.
#include "platform/posix/settings.h"
#include "plugin/status.h"
#include "tests/faults/failing_calls.h"
#include "tests/faults/fault_deck.h"
#include "tests/plugin/plugin_fixture.h"
#include "tests/plugin/stored_file.h"

#include <cerrno>
#include <optional>

namespace fault {
namespace {

using namespace ppt;

class DiskFault : public plugin_test::PluginTest {
  protected:
    void SetUp() override {
        PluginTest::SetUp();
        start("hek");
        platform::trust_link_targets(true);
        every_kind_of_link(Ids::as_properties).write(path("deck.ppt"));
        source_ = bytes_of("deck.ppt");
        ASSERT_EQ(load_again("deck.ppt"), 0);
        links_ = loaded_links();
        change_all_links("new");
        ASSERT_EQ(rewrite("expected.ppt"), 0);
        open_files_ = open_files();
    }

    void TearDown() override {
        platform::trust_link_targets(false);
        PluginTest::TearDown();
    }

    static std::size_t open_files() {
        const std::filesystem::directory_iterator all("/proc/self/fd");
        return static_cast<std::size_t>(std::distance(begin(all), end(all)));
    }

    std::string source_;
    std::string links_;
    std::size_t open_files_ = 0;
};

struct Fault {
    const char* name;
    int error;
    Failure failure;
    bool in_kernel; // copies between files are made there
};

class WriteFault : public DiskFault, public testing::WithParamInterface<Fault> {
  protected:
    // 8900 for a full disk; else 5200 for a write of the system's, 7550 for one of a compound file.
    static bool tells_of_write(std::int32_t found) {
        return GetParam().error == EIO
                   ? found == status::kWriteFault || found == status::kStorageWriteFault
                   : found == status::kDiskFull;
    }
};

INSTANTIATE_TEST_SUITE_P(Disks, WriteFault,
                         testing::Values(Fault{"Full", ENOSPC, Failure::from_then_on, true},
                                         Fault{"FullForAMoment", ENOSPC, Failure::once, false},
                                         Fault{"OverQuota", EDQUOT, Failure::from_then_on, false},
                                         Fault{"Failing", EIO, Failure::from_then_on, false},
                                         Fault{"FailingOnce", EIO, Failure::once, true}),
                         [](const auto& fault) { return std::string(fault.param.name); });

TEST_P(WriteFault, RewritingEndsWithAStatusAndTheNextOneWorks) {
    const std::string expected = bytes_of("expected.ppt");
    std::optional<NoKernelCopies> by_buffer;
    if (!GetParam().in_kernel) {
        by_buffer.emplace();
    }
    std::uint64_t failures = 0;
    bool happened = true;
    for (std::uint64_t number = 0; happened; ++number) {
        SCOPED_TRACE("call " + std::to_string(number));
        ASSERT_EQ(load_again("deck.ppt"), 0);
        change_all_links("new");
        const std::string changed = loaded_links();
        std::int32_t status = 0;
        {
            const FailingCall failing(Calls::writes, number, GetParam().error, GetParam().failure);
            status = rewrite("out.ppt");
            happened = failing.happened();
        }
        if (status == 0) {
            EXPECT_EQ(bytes_of("out.ppt") == expected, true);
        } else {
            ++failures;
            EXPECT_TRUE(tells_of_write(status)) << status;
        }
        // A presentation that could not even be copied is still loaded, and no copy is there.
        if (n_getLinkCount() > 0) {
            EXPECT_EQ(loaded_links(), changed);
            EXPECT_FALSE(std::filesystem::exists(path("out.ppt")));
            EXPECT_EQ(rewrite("out.ppt"), 0);
        }
        std::filesystem::remove(path("out.ppt"));
        ASSERT_EQ(open_files(), open_files_);
        ASSERT_EQ(bytes_of("deck.ppt") == source_, true);
    }
    EXPECT_GT(failures, 15U);
}

// A read that fails may be one that the call can do without.
TEST_F(DiskFault, AReadThatFailsEndsLoadingOrRewritingWithAStatus) {
    const std::string expected = bytes_of("expected.ppt");
    std::uint64_t failures = 0;
    bool happened = true;
    for (std::uint64_t number = 0; happened; ++number) {
        SCOPED_TRACE("call " + std::to_string(number));
        std::int32_t loaded = 0;
        std::int32_t written = 0;
        {
            const FailingCall failing(Calls::reads, number, EIO, Failure::once);
            loaded = load_again("deck.ppt");
            if (loaded == 0) {
                EXPECT_EQ(loaded_links(), links_);
                change_all_links("new");
                written = rewrite("out.ppt");
            }
            happened = failing.happened();
        }
        failures += loaded != 0 || written != 0 ? 1 : 0;
        if (loaded == 0 && written == 0) {
            EXPECT_EQ(bytes_of("out.ppt") == expected, true);
        }
        if (loaded != 0) {
            EXPECT_EQ(n_getLinkCount(), 0);
        }
        j_unLoadFile();
        ASSERT_EQ(open_files(), open_files_);
    }
    EXPECT_GT(failures, 15U);
}

// Whenever another process gets in between: at the presentation, at the empty copy, at the copy
// that is about to be opened again.
TEST_F(DiskFault, ALockThatAnotherProcessHoldsEndsRewritingWithAStatus) {
    const std::int32_t expected[] = {status::kAccessDenied, status::kAccessDenied,
                                     status::kInUseByOther};
    for (std::uint64_t number = 0; number < std::size(expected); ++number) {
        SCOPED_TRACE("lock " + std::to_string(number));
        ASSERT_EQ(load_again("deck.ppt"), 0);
        {
            const FailingCall failing(Calls::locks, number, EAGAIN, Failure::once);
            EXPECT_EQ(rewrite("out.ppt"), expected[number]);
        }
        const bool is_copied = number == 2;
        EXPECT_EQ(bytes_of("out.ppt") == (is_copied ? source_ : ""), true);
        EXPECT_EQ(std::filesystem::exists(path("out.ppt")), is_copied);
        EXPECT_EQ(loaded_links(), links_);
        EXPECT_EQ(rewrite("out.ppt"), 0);
        std::filesystem::remove(path("out.ppt"));
        ASSERT_EQ(open_files(), open_files_);
    }
}

TEST_F(DiskFault, AFileThatAnotherFinishesBeforeItIsLockedIsReadWhole) {
    for (const std::size_t part : {std::size_t{0}, source_.size() / 2}) {
        SCOPED_TRACE(std::to_string(part) + " bytes at first");
        std::ofstream(path("deck.ppt"), std::ios::binary) << source_.substr(0, part);
        const BeforeTheFirstLock other([this, part] {
            std::ofstream(path("deck.ppt"), std::ios::binary | std::ios::app)
                << source_.substr(part);
        });
        EXPECT_EQ(load_again("deck.ppt"), 0);
        EXPECT_EQ(loaded_links(), links_);
    }
}

} // namespace
} // namespace fault

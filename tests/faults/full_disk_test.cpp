// Disks and files that take no more, under the built program: the run ends with a sentence, OUT is
// what it was, and nothing else is left.
#include "tests/faults/relink_fixture.h"
#include "tests/faults/small_disk.h"

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace fault {
namespace {

using pptlinks::RunResult;

std::string full(const std::string& out) {
    return "pptlinks: " + out +
           ": the disk is full; free some space and try again (status 8900).\n";
}

class FullDisk : public BuiltRelink {
  protected:
    // No file of the run grows beyond the size.
    RunResult relink_with_files_up_to(std::size_t bytes) const {
        return run_built(relink_to("out.ppt"), [bytes] {
            std::signal(SIGXFSZ, SIG_DFL); // as a shell starts it
            const rlimit limit{bytes, bytes};
            setrlimit(RLIMIT_FSIZE, &limit);
        });
    }
};

TEST_F(FullDisk, AFileThatMayNotGrowEndsTheRewriteAtWhateverSize) {
    const std::size_t step = whole_.size() / 16;
    for (std::size_t limit = 0; limit < whole_.size();
         limit = std::max(limit + 1, std::min(limit + step, whole_.size() - 1))) {
        const bool replaces = limit / step % 2 != 0;
        SCOPED_TRACE(std::to_string(limit) + " bytes of " + std::to_string(whole_.size()));
        put_old_file("out.ppt", replaces);
        const RunResult result = relink_with_files_up_to(limit);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.error, full("out.ppt"));
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(content(path("out.ppt")), replaces ? kOld : "");
        ASSERT_EQ(names_in_folder(), replaces ? (Names{"in.ppt", "out.ppt"}) : (Names{"in.ppt"}));
    }
    EXPECT_EQ(relink_with_files_up_to(whole_.size()).status, 0);
    EXPECT_EQ(content(path("out.ppt")) == whole_, true);
}

TEST_F(FullDisk, ADiskEndsTheRewriteWhereverItIsFull) {
    constexpr std::size_t kPage = 4096; // in such steps a disk in memory fills up
    const std::size_t needed = (whole_.size() + kPage - 1) / kPage;
    const std::string out = "disk/out.ppt";
    std::filesystem::create_directory(path("disk"));
    for (std::size_t pages = 1; pages <= needed; ++pages) {
        for (const bool replaces : {false, true}) {
            const std::size_t size = (pages + (replaces ? 1 : 0)) * kPage;
            SCOPED_TRACE(std::to_string(size) + " bytes for " + std::to_string(whole_.size()));
            const SmallDisk disk(path("disk"), "size=" + std::to_string(size));
            if (!disk.why_not().empty()) {
                GTEST_SKIP() << disk.why_not();
            }
            put_old_file(out, replaces);
            const RunResult result = run_built(relink_to(out));
            const bool fits = pages == needed;
            EXPECT_EQ(result.status, fits ? 0 : 1);
            EXPECT_EQ(result.error, fits ? "" : full(out));
            EXPECT_EQ(content(path(out)) == (fits ? whole_ : replaces ? kOld : ""), true);
            ASSERT_EQ(names_in("disk"), fits || replaces ? Names{"out.ppt"} : Names{});
        }
    }
    const SmallDisk disk(path("disk"), "nr_inodes=1");
    EXPECT_EQ(run_built(relink_to(out)).error,
              "pptlinks: disk/out.ppt: no file can be created in its folder (No space left on "
              "device); check the folder's permissions and the free space.\n");
}

TEST_F(FullDisk, AnOutputThatTakesNothingIsReported) {
    const auto into_full_device = [] {
        const int full = open("/dev/full", O_WRONLY);
        dup2(full, STDOUT_FILENO);
    };
    const auto into_nothing = [] { close(STDOUT_FILENO); };
    constexpr const char* kComplaint =
        "pptlinks: standard output: not everything could be written; check where the output "
        "goes.\n";
    for (const auto& command : {Names{"list", "in.ppt"}, Names{"list", "--json", "in.ppt"},
                                Names{"check", "in.ppt"}, Names{"--help"}, relink_to("out.ppt")}) {
        SCOPED_TRACE(command.front());
        const RunResult full = run_built(command, into_full_device);
        EXPECT_EQ(full.status, 1);
        EXPECT_EQ(full.error, kComplaint);
        const RunResult closed = run_built(command, into_nothing);
        EXPECT_EQ(closed.status, 1);
        EXPECT_EQ(closed.error, kComplaint);
    }
    EXPECT_EQ(content(path("out.ppt")) == whole_, true); // only the report was lost
}

} // namespace
} // namespace fault

// A relink that is stopped before each of its calls that change a file. Killed there: OUT is what
// it was or the whole copy, the presentation keeps its bytes, and the next relink works in spite of
// what is left.
#include "tests/faults/relink_fixture.h"
#include "tests/faults/traced_relink.h"

#include <array>
#include <csignal>

namespace fault {
namespace {

class KilledRelink : public BuiltRelink, public testing::WithParamInterface<bool> {
  protected:
    // False when the relink ended before it came to the change.
    bool killed_before(std::size_t number) {
        TracedRelink relink(path(""), relink_to("out.ppt"));
        const bool stopped = relink.run_to_change(number);
        why_not_ = relink.why_not();
        return stopped;
    }

    // What killed runs left behind.
    std::size_t temporary_files() const {
        const Names names = names_in_folder();
        return static_cast<std::size_t>(
            std::count_if(names.begin(), names.end(),
                          [](const std::string& name) { return name.starts_with(".pptlinks-"); }));
    }

    std::string why_not_;
};

INSTANTIATE_TEST_SUITE_P(Out, KilledRelink, testing::Bool(),
                         [](const auto& replaces) { return replaces.param ? "Replaced" : "New"; });

TEST_P(KilledRelink, LeavesOutAsItWasOrWhole) {
    std::size_t before = 0;
    std::size_t after = 0;
    put_old_file("out.ppt", GetParam());
    for (std::size_t number = 0; killed_before(number); ++number) {
        SCOPED_TRACE("killed before change " + std::to_string(number));
        const std::string left = content(path("out.ppt"));
        const bool is_old = left == (GetParam() ? kOld : "");
        ++(is_old ? before : after);
        EXPECT_TRUE(is_old || left == whole_);
        EXPECT_EQ(std::filesystem::exists(path("out.ppt")), GetParam() || !is_old);
        EXPECT_EQ(content(path("in.ppt")) == source_, true);
        put_old_file("out.ppt", GetParam());
    }
    if (!why_not_.empty()) {
        GTEST_SKIP() << why_not_;
    }
    EXPECT_GT(before, 15U);
    EXPECT_GT(after, 0U);
    EXPECT_GT(temporary_files(), 10U);
    EXPECT_EQ(names_in_folder().size(), 2 + temporary_files());
    EXPECT_EQ(run_built(relink_to("out.ppt")).status, 0);
    EXPECT_EQ(content(path("out.ppt")) == whole_, true);
}

TEST_P(KilledRelink, LeavesNothingElseWhenItIsInterrupted) {
    std::size_t before = 0;
    std::size_t after = 0;
    for (std::size_t number = 0;; ++number) {
        SCOPED_TRACE("interrupted before change " + std::to_string(number));
        put_old_file("out.ppt", GetParam());
        TracedRelink relink(path(""), relink_to("out.ppt"));
        if (!relink.run_to_change(number)) {
            why_not_ = relink.why_not();
            break;
        }
        relink.interrupt(std::array{SIGINT, SIGHUP, SIGTERM}[number % 3]);
        EXPECT_EQ(relink.finish().status, -1);
        const std::string left = content(path("out.ppt"));
        const bool is_old = left == (GetParam() ? kOld : "");
        ++(is_old ? before : after);
        EXPECT_TRUE(is_old || left == whole_);
        EXPECT_EQ(temporary_files(), 0U);
    }
    if (!why_not_.empty()) {
        GTEST_SKIP() << why_not_;
    }
    EXPECT_GT(before, 15U);
    EXPECT_GT(after, 0U);
}

// The presentation is loaded by then; a rename takes it away from under the relink.
TEST_F(BuiltRelink, APresentationThatIsReplacedMeanwhileIsNotMixedWithItsSuccessor) {
    for (const std::size_t number : {1U, 4U, 8U}) {
        SCOPED_TRACE("replaced before change " + std::to_string(number));
        ASSERT_EQ(run_built(relink_to("successor.ppt")).status, 0);
        TracedRelink relink(path(""), relink_to("out.ppt"));
        if (!relink.run_to_change(number)) {
            GTEST_SKIP() << relink.why_not();
        }
        std::filesystem::rename(path("successor.ppt"), path("in.ppt"));
        const pptlinks::RunResult result = relink.finish();
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.error,
                  "pptlinks: in.ppt: another program changed it while it was read; try again.\n");
        EXPECT_EQ(names_in_folder(), (Names{"in.ppt"}));
        source_ = content(path("in.ppt"));
    }
}

} // namespace
} // namespace fault

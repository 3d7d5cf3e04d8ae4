// Memory that runs out: whichever allocation fails while a presentation is loaded or rewritten, the
// call says so or does without, gives back all that it took, and the next call works.
#include "platform/posix/settings.h"
#include "plugin/status.h"
#include "tests/faults/failing_allocations.h"
#include "tests/faults/fault_deck.h"
#include "tests/plugin/plugin_fixture.h"
#include "tests/plugin/stored_file.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace fault {
namespace {

using namespace ppt;

struct Case {
    const char* name;
    Ids ids;
    const char* options;
};

class AllocationFailure : public plugin_test::PluginTest, public testing::WithParamInterface<Case> {
  protected:
    void SetUp() override {
        PluginTest::SetUp();
        start(GetParam().options);
        platform::trust_link_targets(true);
        every_kind_of_link(GetParam().ids).write(path("deck.ppt"));
        ASSERT_EQ(load_again("deck.ppt"), 0);
        links_ = loaded_links();
        j_unLoadFile();
    }

    void TearDown() override {
        platform::trust_link_targets(false);
        PluginTest::TearDown();
    }

    // The blocks that are held while nothing is loaded.
    static std::int64_t blocks_at_rest() {
        j_unLoadFile();
        v_setErrorParamText("x"); // the last failure may have had no memory for its parameters
        return live_allocations();
    }

    // 8800 for the plug-in's own memory, 9000 for that of the system's calls, 5700 when there was
    // too little for the storage of an object.
    static bool tells_of_memory(std::int32_t found) {
        return found == status::kOutOfMemory || found == status::kSystemOutOfMemory ||
               found == status::kStorageOnMemoryFailed;
    }

    std::string links_;
};

// Keeping going in spite of what cannot be read is no going on without memory.
INSTANTIATE_TEST_SUITE_P(AllCases, AllocationFailure,
                         testing::Values(Case{"IdsAsProperties", Ids::as_properties, "het"},
                                         Case{"IdsOnPages", Ids::on_pages, "het"},
                                         Case{"KeepingGoing", Ids::on_pages, "hetk"}),
                         [](const auto& found) { return found.param.name; });

TEST_P(AllocationFailure, LoadingEndsWithAStatusAndGivesEverythingBack) {
    const std::string deck = path("deck.ppt");
    std::uint64_t failures = 0;
    bool happened = true;
    for (std::uint64_t number = 0; happened; ++number) {
        SCOPED_TRACE("allocation " + std::to_string(number));
        const std::int64_t at_rest = blocks_at_rest();
        std::int32_t status = 0;
        {
            const FailingAllocation failing(number);
            status = j_loadFile(deck.c_str(), 3);
            happened = failing.happened();
        }
        if (status == 0) {
            EXPECT_EQ(loaded_links(), links_);
        } else {
            ++failures;
            EXPECT_TRUE(tells_of_memory(status)) << status;
            EXPECT_EQ(n_getLinkCount(), 0);
        }
        ASSERT_EQ(j_loadFile(deck.c_str(), 3), 0);
        ASSERT_EQ(loaded_links(), links_);
        ASSERT_EQ(blocks_at_rest(), at_rest);
    }
    EXPECT_GT(failures, 300U);
}

TEST_P(AllocationFailure, RewritingEndsWithAStatusAndGivesEverythingBack) {
    const std::string deck = path("deck.ppt");
    std::string out = path("out.ppt");
    ASSERT_EQ(load_again("deck.ppt"), 0);
    change_all_links("new");
    ASSERT_EQ(rewrite("expected.ppt"), 0);
    const auto expected = plugin_test::StoredFile(path("expected.ppt")).streams();
    std::uint64_t failures = 0;
    bool happened = true;
    for (std::uint64_t number = 0; happened; ++number) {
        SCOPED_TRACE("allocation " + std::to_string(number));
        const std::int64_t at_rest = blocks_at_rest();
        ASSERT_EQ(j_loadFile(deck.c_str(), 3), 0);
        ASSERT_EQ(loaded_links(), links_);
        change_all_links("new");
        std::int32_t status = 0;
        {
            const FailingAllocation failing(number);
            status = j_rewriteFile(out.data(), 3);
            happened = failing.happened();
        }
        if (status == 0) {
            EXPECT_EQ(state().links_not_written, std::vector<std::uint32_t>());
            EXPECT_EQ(plugin_test::StoredFile(out).streams() == expected, true);
        } else {
            ++failures;
            EXPECT_TRUE(tells_of_memory(status)) << status;
        }
        ASSERT_EQ(j_loadFile(deck.c_str(), 3), 0);
        ASSERT_EQ(loaded_links(), links_);
        ASSERT_EQ(blocks_at_rest(), at_rest);
    }
    EXPECT_GT(failures, 1000U);
}

TEST_P(AllocationFailure, UnloadingNeedsNoMemory) {
    ASSERT_EQ(load_again("deck.ppt"), 0);
    change_all_links("new");
    {
        const FailingAllocation failing(0);
        EXPECT_EQ(j_unLoadFile(), 0);
        EXPECT_FALSE(failing.happened());
    }
    EXPECT_EQ(n_getLinkCount(), 0);
}

TEST_P(AllocationFailure, ALinkThatCannotTakeItsNewPathKeepsTheOldOne) {
    ASSERT_EQ(load_again("deck.ppt"), 0);
    const std::string before = loaded_links();
    const std::string long_path = "D:\\" + std::string(100, 'x');
    std::uint64_t number = 0;
    for (bool happened = true; happened; ++number) {
        SCOPED_TRACE("allocation " + std::to_string(number));
        std::int32_t status = 0;
        {
            const FailingAllocation failing(number);
            status = j_setLinkFileName(0, long_path.c_str(), 0);
            happened = failing.happened();
        }
        EXPECT_EQ(status, happened ? status::kOutOfMemory : 0);
        EXPECT_EQ(loaded_links() == before, happened);
        EXPECT_EQ(link(0).path_changed(), !happened);
    }
    EXPECT_GT(number, 2U);
}

// In a process of its own, where no call came before.
TEST(FirstCallDeathTest, NoExportThrowsWhenThereIsNoMemoryForTheState) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto every_status = [] {
        char text[1024] = "";
        id64 id{};
        const auto without_memory = [](auto call) {
            const FailingAllocation failing(0);
            return call();
        };
        return std::vector<std::int32_t>{
            without_memory([] { return n_getLinkCount(); }),
            without_memory([] { return j_unLoadFile(); }),
            without_memory([] { return j_termDLL(0, 0); }),
            without_memory([] { return j_initDLL(255, 0, "het"); }),
            without_memory([&] { return j_getLinkFileName(0, 0, text); }),
            without_memory([&] { return j_getLinkId(0, 0, &id); }),
            without_memory([&] { return j_setLinkId(0, 0, &id); }),
            without_memory([&] { return j_getHyperlinkText(0, text); }),
            without_memory([&] { return j_getTargetFileId(0, &id); }),
            without_memory([&] { return j_setTargetFileId(0, &id); }),
        };
    };
    const std::vector<std::int32_t> expected{0, 0, 0, 8800, 8800, 8800, 8800, 8800, 8800, 8800};
    EXPECT_EXIT(std::_Exit(every_status() == expected ? 0 : 1), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace fault

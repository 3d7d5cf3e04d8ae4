// What the commands cost beyond loading and rewriting: a path is kept once however many links have
// it, and an output that is a hundred times the size of its file is never in memory.
#include "plugin/exports.h"
#include "plugin/state.h"
#include "pptlinks/check_command.h"
#include "pptlinks/list_command.h"
#include "pptlinks/relink_command.h"
#include "tests/faults/failing_allocations.h"
#include "tests/support/presentation_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace limits {
namespace {

using namespace presentation_builder;

constexpr std::int32_t kUses = 2000;
constexpr std::uint64_t kMegabyte = std::uint64_t{1} << 20;

// Standard output goes nowhere while this lives.
class Silence {
  public:
    Silence()
        : output_(dup(STDOUT_FILENO)) {
        std::fflush(stdout);
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDOUT_FILENO);
        close(nowhere);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;
    ~Silence() {
        std::fflush(stdout);
        dup2(output_, STDOUT_FILENO);
        close(output_);
    }

  private:
    int output_;
};

// One hyperlink with a long path, and a slide that shows it many times.
void write_deck(const std::string& path) {
    Deck deck;
    const std::uint32_t link = deck.hyperlink(u"C:\\" + std::u16string(1000, u'x'));
    Bytes references;
    for (std::int32_t i = 0; i < kUses; ++i) {
        bytes::append(references, external_object_ref(link));
    }
    deck.add_slide().shape(Shape().record(client_data(references)));
    deck.write(path);
}

// Hyperlinks with short paths of their own, each shown once.
void write_deck_of_objects(const std::string& path, std::int32_t count) {
    Deck deck;
    Bytes references;
    for (std::int32_t i = 0; i < count; ++i) {
        const std::string name = "C:\\" + std::to_string(i);
        bytes::append(references, external_object_ref(deck.hyperlink({name.begin(), name.end()})));
    }
    deck.add_slide().shape(Shape().record(client_data(references)));
    deck.write(path);
}

const std::string kNewPath = "D:\\" + std::string(1000, 'y');

std::uint64_t memory_of_loading(const std::string& path) {
    ppt::state().version_ceiling = 255;
    const fault::HeapPeak heap;
    EXPECT_EQ(j_loadFile(path.c_str(), 3), 0);
    EXPECT_EQ(n_getLinkCount(), kUses);
    j_unLoadFile();
    return heap.bytes();
}

// Each of the links gets the path that `new_path` names for it.
template <class NewPath>
std::uint64_t memory_of_rewriting(const std::string& path, std::string copy, std::int32_t count,
                                  NewPath new_path) {
    ppt::state().version_ceiling = 255;
    const fault::HeapPeak heap;
    EXPECT_EQ(j_loadFile(path.c_str(), 3), 0);
    for (std::int32_t index = 0; index < count; ++index) {
        EXPECT_EQ(j_setLinkFileName(index, new_path(index).c_str(), 0), 0);
    }
    EXPECT_EQ(j_rewriteFile(copy.data(), 3), 0);
    return heap.bytes();
}

class CommandMemory : public testing::Test {
  protected:
    ~CommandMemory() override { std::filesystem::remove_all(folder_); }

    std::string file(const std::string& name) const { return (folder_ / name).string(); }

    const std::filesystem::path folder_ = make_temporary_folder("ppt");
    const std::string deck_ = file("deck.ppt");
};

class ManyUsesOfOnePath : public CommandMemory {
  protected:
    ManyUsesOfOnePath() { write_deck(deck_); }

    // As text and as JSON.
    template <class Arguments>
    void expect_little_more_than_loading(int (*run)(const Arguments&), int status) const {
        const std::uint64_t allowed = memory_of_loading(deck_) + kMegabyte;
        Arguments arguments;
        arguments.files = {deck_};
        for (const bool json : {false, true}) {
            arguments.json = json;
            const Silence silence;
            const fault::HeapPeak heap;
            EXPECT_EQ(run(arguments), status);
            EXPECT_LE(heap.bytes(), allowed) << (json ? "as JSON" : "as text");
        }
    }
};

TEST_F(ManyUsesOfOnePath, AreListedInLittleMoreMemoryThanLoadingTakes) {
    expect_little_more_than_loading<pptlinks::ListArguments>(pptlinks::run_list, 0);
}

TEST_F(ManyUsesOfOnePath, AreCheckedInLittleMoreMemoryThanLoadingTakes) {
    // None of the targets is there.
    expect_little_more_than_loading<pptlinks::CheckArguments>(pptlinks::run_check,
                                                              pptlinks::kExitFailed);
}

TEST_F(ManyUsesOfOnePath, AreRelinkedInLittleMoreMemoryThanRewritingTakes) {
    const std::uint64_t allowed =
        memory_of_rewriting(deck_, file("plain.ppt"), kUses, [](int) { return kNewPath; }) +
        kMegabyte;
    pptlinks::RelinkArguments arguments;
    arguments.file = deck_;
    arguments.out = file("copy.ppt");
    arguments.paths = {{0, kNewPath}};
    const Silence silence;
    const fault::HeapPeak heap;
    EXPECT_EQ(pptlinks::run_relink(arguments), 0);
    EXPECT_LE(heap.bytes(), allowed);
}

// Beside the rewriting 20 bytes for a link, its place in an order, and the text of its path.
TEST_F(CommandMemory, OfRelinkingManyObjectsIsLittleMoreThanRewritingTakes) {
    constexpr std::int32_t kObjects = 5000;
    constexpr std::uint64_t kForOne = 80;
    write_deck_of_objects(deck_, kObjects);
    const std::uint64_t rewriting =
        memory_of_rewriting(deck_, file("plain.ppt"), kObjects,
                            [](int index) { return "D:\\" + std::to_string(index); });
    pptlinks::RelinkArguments arguments;
    arguments.file = deck_;
    arguments.out = file("copy.ppt");
    arguments.maps = {{"C:", "D:"}};
    const Silence silence;
    const fault::HeapPeak heap;
    EXPECT_EQ(pptlinks::run_relink(arguments), 0);
    EXPECT_LE(heap.bytes(), rewriting + kObjects * kForOne);
}

} // namespace
} // namespace limits

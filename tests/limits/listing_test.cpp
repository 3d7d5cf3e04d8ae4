// What listing costs beyond loading: a path is kept once however many links have it, and a listing
// that is a hundred times the size of its file is never in memory.
#include "plugin/exports.h"
#include "plugin/state.h"
#include "pptlinks/list_command.h"
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
    constexpr std::size_t kUses = 4000;
    Deck deck;
    const std::uint32_t link = deck.hyperlink(u"C:\\" + std::u16string(1000, u'x'));
    Bytes references;
    for (std::size_t i = 0; i < kUses; ++i) {
        bytes::append(references, external_object_ref(link));
    }
    deck.add_slide().shape(Shape().record(client_data(references)));
    deck.write(path);
}

std::uint64_t memory_of_loading(const std::string& path) {
    ppt::state().version_ceiling = 255;
    const fault::HeapPeak heap;
    EXPECT_EQ(j_loadFile(path.c_str(), 3), 0);
    EXPECT_EQ(n_getLinkCount(), 4000);
    j_unLoadFile();
    return heap.bytes();
}

TEST(Listing, NeedsLittleMoreMemoryThanLoading) {
    const std::filesystem::path folder = make_temporary_folder("ppt");
    pptlinks::ListArguments arguments;
    arguments.files = {(folder / "deck.ppt").string()};
    write_deck(arguments.files.front());
    constexpr std::uint64_t kMegabyte = std::uint64_t{1} << 20;
    const std::uint64_t allowed = memory_of_loading(arguments.files.front()) + kMegabyte;
    for (const bool json : {false, true}) {
        arguments.json = json;
        const Silence silence;
        const fault::HeapPeak heap;
        EXPECT_EQ(pptlinks::run_list(arguments), 0);
        EXPECT_LE(heap.bytes(), allowed) << (json ? "as JSON" : "as a table");
    }
    std::filesystem::remove_all(folder);
}

} // namespace
} // namespace limits

// What ppt.dll makes of missing memory, and what it tells a host that asked for that.
#include "plugin/status.h"
#include "tests/support/ole_storage.h"
#include "tests/windows/library_fixture.h"
#include "tests/windows/replaced_import.h"

#include <cstdlib>
#include <limits>

namespace library_test {
namespace {

using namespace presentation_builder;

// One allocation of ppt.dll fails while this lives: the one with the number, from 0. Those of the
// system do not count.
class FailingMalloc {
  public:
    FailingMalloc(HMODULE library, std::size_t number)
        : replaced_(library, "malloc", &allocate) {
        left_ = number;
        wanted_ = 0;
    }

    // Whether it came to that, and how many bytes were wanted.
    bool happened() const { return wanted_ > 0; }
    std::size_t wanted() const { return wanted_; }

  private:
    static void* allocate(std::size_t size) {
        if (left_-- > 0) {
            return std::malloc(size);
        }
        wanted_ = size;
        left_ = std::numeric_limits<std::size_t>::max();
        return nullptr;
    }

    static inline std::size_t left_ = 0;
    static inline std::size_t wanted_ = 0;
    ReplacedImport replaced_;
};

class LibraryWithoutMemory : public Library {
  protected:
    void SetUp() override {
        Library::SetUp();
        start();
        bound<decltype(&v_setNewMode)>("_v_setNewMode@0")();
        Deck deck;
        deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\a.doc")));
        deck.add_slide().shape(Shape().link(deck.hyperlink(u"http://example.org/")));
        deck.write(path("deck.ppt"));
        ASSERT_EQ(load(path("deck.ppt")), 0);
        unload();
    }

    void TearDown() override {
        unload();
        Library::TearDown();
    }

    static std::int32_t unload() { return bound<decltype(&j_unLoadFile)>("_j_unLoadFile@0")(); }
    static std::int32_t link_count() {
        return bound<decltype(&n_getLinkCount)>("_n_getLinkCount@0")();
    }
    static std::int32_t change_link() {
        return bound<decltype(&j_setLinkFileName)>("_j_setLinkFileName@12")(0, "D:\\new.doc", 0);
    }
    static std::int32_t rewrite(std::string path) {
        return bound<decltype(&j_rewriteFile)>("_j_rewriteFile@8")(path.data(), 1);
    }

    // Of a call in which an allocation failed.
    static void expect_told(std::int32_t status, std::size_t wanted) {
        EXPECT_EQ(status, ppt::status::kOutOfMemory);
        const std::string size = std::to_string(wanted) + '|';
        EXPECT_EQ(error_parameters().substr(0, size.size()), size);
    }
};

TEST_F(LibraryWithoutMemory, LoadingTellsWhatWasWanted) {
    bool happened = true;
    std::size_t number = 0;
    for (; happened; ++number) {
        SCOPED_TRACE("allocation " + std::to_string(number));
        const FailingMalloc failing(library(), number);
        const std::int32_t status = load(path("deck.ppt"));
        happened = failing.happened();
        if (status != 0) {
            expect_told(status, failing.wanted());
            EXPECT_EQ(link_count(), 0);
        }
        unload();
    }
    EXPECT_GT(number, 50U);
    EXPECT_EQ(load(path("deck.ppt")), 0);
    EXPECT_EQ(link_count(), 2);
}

TEST_F(LibraryWithoutMemory, RewritingTellsWhatWasWanted) {
    bool happened = true;
    std::size_t number = 0;
    for (; happened; ++number) {
        SCOPED_TRACE("allocation " + std::to_string(number));
        ASSERT_EQ(load(path("deck.ppt")), 0);
        ASSERT_EQ(change_link(), 0);
        const FailingMalloc failing(library(), number);
        const std::int32_t status = rewrite(path("copy.ppt"));
        happened = failing.happened();
        if (status != 0) {
            expect_told(status, failing.wanted());
        }
        unload();
    }
    EXPECT_GT(number, 50U);
    EXPECT_EQ(load(path("copy.ppt")), 0);
}

// All stretches of free addresses of a megabyte or more.
class NoLargeBlocks {
  public:
    NoLargeBlocks() {
        for (SIZE_T size = SIZE_T{1} << 30; size >= SIZE_T{1} << 20; size /= 2) {
            while (void* const block = VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS)) {
                blocks_.push_back(block);
            }
        }
    }
    NoLargeBlocks(const NoLargeBlocks&) = delete;
    NoLargeBlocks& operator=(const NoLargeBlocks&) = delete;
    ~NoLargeBlocks() {
        for (void* const block : blocks_) {
            VirtualFree(block, 0, MEM_RELEASE);
        }
    }

  private:
    std::vector<void*> blocks_;
};

TEST_F(LibraryWithoutMemory, LoadingTellsWhatALargeObjectWanted) {
    if (kIs64Bit) {
        GTEST_SKIP() << "the address space has no end that could be reached";
    }
    constexpr std::size_t kLarge = 8 << 20;
    {
        Bytes image = ole_storage(linked_object({{}, file_moniker({"C:\\old\\book.xls"})}));
        image.resize(kLarge);
        Deck deck;
        const auto book = deck.ole_link(storage_record(image, false));
        deck.add_slide().shape(Shape().object(book));
        deck.write(path("deck.ppt"));
    }
    std::int32_t status = 0;
    {
        const NoLargeBlocks none;
        status = load(path("deck.ppt"));
    }
    EXPECT_EQ(status, ppt::status::kOutOfMemory);
    EXPECT_EQ(error_parameters().substr(0, 8), std::to_string(kLarge) + '|');
}

} // namespace
} // namespace library_test

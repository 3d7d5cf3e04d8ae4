// ppt.dll itself, bound by its decorated names as hosts bind it: what it keeps of a host's thread,
// how little stack it needs, and what a host is told when there is no memory.
#include "plugin/exports.h"
#include "plugin/status.h"
#include "tests/support/ole_storage.h"
#include "tests/support/presentation_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace presentation_builder;

class Library : public testing::Test {
  protected:
    void SetUp() override { folder_ = make_temporary_folder("library"); }
    void TearDown() override {
        if (terminate_ != nullptr) {
            terminate_(0, 0);
        }
        std::filesystem::remove_all(folder_);
    }

    template <class Function>
    static Function bound(const char* name) {
        static const HMODULE library = LoadLibraryA("ppt.dll");
        const FARPROC address = library != nullptr ? GetProcAddress(library, name) : nullptr;
        EXPECT_NE(address, nullptr) << name << ", error " << GetLastError();
        return reinterpret_cast<Function>(reinterpret_cast<void*>(address));
    }

    void start() {
        terminate_ = bound<decltype(&j_termDLL)>("_j_termDLL@8");
        ASSERT_EQ(bound<decltype(&j_initDLL)>("_j_initDLL@12")(255, 0, "het"), 0);
    }

    std::string path(const char* name) const { return (folder_ / name).string(); }

    static std::int32_t load(const std::string& path) {
        return bound<decltype(&j_loadFile)>("_j_loadFile@8")(path.c_str(), 1);
    }

    // The error parameters with '|' for the separator.
    static std::string error_parameters() {
        const auto get = bound<decltype(&ps_getErrorParamArray)>("_ps_getErrorParamArray@0");
        std::string text;
        for (const WCHAR* unit = get()->text; unit != nullptr && *unit != 0; ++unit) {
            text += *unit == ppt::kErrorParamSeparator ? '|' : static_cast<char>(*unit);
        }
        return text;
    }

    std::filesystem::path folder_;
    decltype(&j_termDLL) terminate_ = nullptr;
};

// Whether COM keeps this thread in an apartment of its own: no other kind is then to be had.
bool is_in_apartment() {
    const HRESULT result = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    if (SUCCEEDED(result)) {
        CoUninitialize();
    }
    return result == RPC_E_CHANGED_MODE;
}

TEST_F(Library, ComIsInitialisedFromTheFirstCallToTheLast) {
    EXPECT_FALSE(is_in_apartment());
    start();
    EXPECT_TRUE(is_in_apartment());
    start(); // counted
    terminate_(0, 0);
    EXPECT_TRUE(is_in_apartment());
    terminate_(0, 0);
    EXPECT_FALSE(is_in_apartment());
    terminate_ = nullptr;
}

TEST_F(Library, AFailureTellsTheLastErrorOfTheSystem) {
    start();
    SetLastError(ERROR_NOT_READY); // what the host left is not taken for the failure
    EXPECT_EQ(load(path("none.ppt")), ppt::status::kFileNotFound);
    Deck deck;
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\a.doc")));
    deck.write(path("deck.ppt"));
    ASSERT_EQ(load(path("deck.ppt")), 0);
    SetLastError(ERROR_NOT_READY);
    std::string nowhere = path("none\\out.ppt");
    EXPECT_EQ(bound<decltype(&j_rewriteFile)>("_j_rewriteFile@8")(nowhere.data(), 1),
              ppt::status::kPathNotFound);
    EXPECT_EQ(error_parameters().substr(0, 4), "0|3|") << error_parameters();
    EXPECT_EQ(bound<decltype(&j_unLoadFile)>("_j_unLoadFile@0")(), 0);
}

constexpr SIZE_T kSmallStack = 256 * 1024;

DWORD WINAPI run_function(void* function) {
    (*static_cast<std::function<void()>*>(function))();
    return 0;
}

void run_on_small_stack(std::function<void()> function) {
    const HANDLE thread = CreateThread(nullptr, kSmallStack, run_function, &function,
                                       STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    ASSERT_NE(thread, nullptr);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}

// No linked object: Wine's OleLoad has no IOleLink (E_NOINTERFACE).
TEST_F(Library, ASmallStackIsEnoughToLoadAndRewrite) {
    Deck deck;
    const auto web = deck.hyperlink(u"http://example.org/");
    for (int i = 0; i < 20; ++i) {
        deck.add_slide()
            .shape(Shape().picture(u"C:\\map.wmf"))
            .shape(Shape().link(web))
            .shape(Shape().text(Text(u"words of a link").link(web, 0, 5)));
    }
    deck.write(path("deck.ppt"));
    std::int32_t loaded = -1;
    std::int32_t count = 0;
    std::int32_t rewritten = -1;
    run_on_small_stack([&] {
        start();
        loaded = load(path("deck.ppt"));
        count = bound<decltype(&n_getLinkCount)>("_n_getLinkCount@0")();
        const auto set = bound<decltype(&j_setLinkFileName)>("_j_setLinkFileName@12");
        for (std::int32_t i = 0; i < count; ++i) {
            set(i, "http://longer.example.org/", 0);
        }
        std::string out = path("out.ppt");
        rewritten = bound<decltype(&j_rewriteFile)>("_j_rewriteFile@8")(out.data(), 1);
        terminate_(0, 0);
        terminate_ = nullptr;
    });
    EXPECT_EQ(loaded, 0);
    EXPECT_GE(count, 60);
    EXPECT_EQ(rewritten, 0) << error_parameters();
}

#if !defined(_WIN64) // where the address space has no end to reach
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

TEST_F(Library, AHostThatAskedForItIsToldHowMuchMemoryWasWanted) {
    start();
    bound<decltype(&v_setNewMode)>("_v_setNewMode@0")();
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
#endif

} // namespace

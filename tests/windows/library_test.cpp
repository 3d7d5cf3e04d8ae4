// ppt.dll itself, bound by its decorated names as hosts bind it: what it keeps of a host's thread,
// what is left when it is unloaded, and what a host is told when there is no memory.
#include "plugin/exports.h"
#include "plugin/status.h"
#include "tests/support/ole_storage.h"
#include "tests/support/presentation_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>

namespace {

using namespace presentation_builder;

constexpr bool kIs64Bit = sizeof(void*) == 8;

class Library : public testing::Test {
  protected:
    void SetUp() override { folder_ = make_temporary_folder("library"); }
    void TearDown() override {
        if (terminate_ != nullptr) {
            terminate_(0, 0);
        }
        std::filesystem::remove_all(folder_);
    }

    // Loaded at the first use; null when it was unloaded or is not there.
    static HMODULE& library() {
        static HMODULE loaded = nullptr;
        if (loaded == nullptr) {
            loaded = LoadLibraryA("ppt.dll");
        }
        return loaded;
    }

    static std::filesystem::path log_path() {
        std::array<WCHAR, 1024> program{};
        GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
        return std::filesystem::path(program.data()).replace_filename("PPT.log");
    }

    template <class Function>
    static Function bound(const char* name) {
        const HMODULE loaded = library();
        const FARPROC address = loaded != nullptr ? GetProcAddress(loaded, name) : nullptr;
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

TEST_F(Library, ALogIsWholeWhenTheLibraryIsUnloaded) {
    start();
    Deck deck;
    deck.add_slide();
    deck.write(path("logged.ppt"));
    EXPECT_EQ(load(path("logged.ppt")), 0);
    EXPECT_EQ(bound<decltype(&j_unLoadFile)>("_j_unLoadFile@0")(), 0);
    terminate_(0, 0);
    terminate_ = nullptr;
    ASSERT_NE(FreeLibrary(library()), FALSE);
    std::ifstream log(log_path(), std::ios::binary);
    const std::string lines{std::istreambuf_iterator<char>(log), {}};
    EXPECT_NE(lines.find("logged.ppt"), std::string::npos) << lines;
    log.close();
    EXPECT_TRUE(std::filesystem::remove(log_path())) << "nobody has it open";
    library() = nullptr;
}

// Its unwinder is told of our exception tables in place of our own.
TEST_F(Library, ARunTimeLibraryOfSomebodyElseDoesNoHarm) {
    if (kIs64Bit) {
        GTEST_SKIP() << "64-bit libraries register no exception tables";
    }
    ASSERT_NE(FreeLibrary(library()), FALSE);
    library() = nullptr;
    const HMODULE runtime =
        LoadLibraryExW((log_path().parent_path() / "runtime" / "libgcc_s_dw2-1.dll").c_str(),
                       nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    ASSERT_NE(runtime, nullptr) << GetLastError();
    terminate_ = bound<decltype(&j_termDLL)>("_j_termDLL@8");
    ASSERT_EQ(bound<decltype(&j_initDLL)>("_j_initDLL@12")(0, 0, ""), 0);
    Deck deck;
    deck.add_slide();
    deck.write(path("deck.ppt"));
    EXPECT_EQ(load(path("deck.ppt")), ppt::status::kVersionAboveCeiling) << "which is thrown";
    terminate_(0, 0);
    terminate_ = nullptr;
    EXPECT_NE(FreeLibrary(library()), FALSE);
    library() = nullptr;
    FreeLibrary(runtime);
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

TEST_F(Library, AHostThatAskedForItIsToldHowMuchMemoryWasWanted) {
    if (kIs64Bit) {
        GTEST_SKIP() << "the address space has no end that could be reached";
    }
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

} // namespace

// ppt.dll itself: what it keeps of a host's thread, and what is left when it is unloaded.
#include "plugin/status.h"
#include "tests/windows/library_fixture.h"

#include <fstream>

namespace library_test {
namespace {

using namespace presentation_builder;

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

} // namespace
} // namespace library_test

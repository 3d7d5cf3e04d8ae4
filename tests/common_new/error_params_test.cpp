// Setting and appending error parameters, the system error form, and Windows errors as status
// codes.

#include "plugin/error_params.h"
#include "plugin/status.h"
#include "plugin/system_error.h"
#include "tests/common_new/support.h"

#include <gtest/gtest.h>

namespace ppt::test {
namespace {

TEST(ErrorParams, EachSettingFunctionReplacesWhatWasThere) {
    mark_error_params();
    v_setErrorParamWideText(WIDE("wide"));
    EXPECT_EQ(error_params(), Texts({"wide"}));
    v_setErrorParamTwoTexts("a", "b");
    EXPECT_EQ(error_params(), Texts({"a", "b"}));
    v_setErrorParamTwoTexts("a", nullptr);
    EXPECT_EQ(error_params(), Texts({"a"}));
    v_setErrorParamTwoTexts("a", "");
    EXPECT_EQ(error_params(), Texts({"a", ""}));
    v_setErrorParamTextAndWide("a", WIDE("\u00e9"));
    EXPECT_EQ(error_params(), Texts({"a", "\xC3\xA9"}));
    v_setErrorParamTextAndNumber("a", -7);
    EXPECT_EQ(error_params(), Texts({"a", "-7"}));
    v_setErrorParamNumbers(INT32_MIN, INT32_MAX);
    EXPECT_EQ(error_params(), Texts({"-2147483648", "2147483647"}));
}

TEST(ErrorParams, CapacityCountsTheTextAndItsTerminator) {
    v_setErrorParamText("C:\\talk.ppt");
    EXPECT_EQ(error_param_array()->capacity, 12);
    EXPECT_TRUE(b_appendErrorParamNumber(42));
    EXPECT_EQ(error_param_array()->capacity, 15);
    v_setErrorParamText("");
    EXPECT_EQ(error_param_array()->capacity, 1);
    ASSERT_NE(error_param_array()->text, nullptr);
    EXPECT_EQ(*error_param_array()->text, 0);
}

TEST(ErrorParams, IndexesStandBehindTheirNumber) {
    v_setErrorParamCountAndIndexes({});
    EXPECT_EQ(error_params(), Texts({"0"}));
    const std::vector<std::uint32_t> indexes{0, 12, 4000000};
    v_setErrorParamCountAndIndexes(indexes);
    EXPECT_EQ(error_params(), Texts({"3", "0", "12", "4000000"}));
    EXPECT_EQ(error_param_array()->capacity, 15);
}

TEST(ErrorParams, ItemsAreAppendedBehindASeparator) {
    v_setErrorParamText("first");
    EXPECT_TRUE(b_appendErrorParamText("second"));
    EXPECT_TRUE(b_appendErrorParamWideText(WIDE("")));
    EXPECT_TRUE(b_appendErrorParamNumber(-1));
    EXPECT_EQ(error_params(), Texts({"first", "second", "", "-1"}));
}

TEST(ErrorParams, AnsiTextIsReadInItsCodePage) {
    const CodePage shift_jis(932);
    ASSERT_TRUE(shift_jis.known());
    v_setErrorParamTwoTexts("\x83\x5C", "\x83\x5C.doc"); // KATAKANA LETTER SO
    EXPECT_EQ(error_params(), Texts({"\xE3\x82\xBD", "\xE3\x82\xBD.doc"}));
    EXPECT_TRUE(b_appendErrorParamText("x"));
    EXPECT_EQ(error_params().back(), "x");
}

struct SystemErrorCase {
    DWORD error;
    std::int32_t status;
};

TEST(SystemError, BecomesAStatusAndItsForm) {
    const SystemErrorCase cases[] = {
        {2, 7510},   {3, 7520},   {4, 7570},  {5, 6100},    {8, 9000},    {14, 9000},
        {19, 6300},  {21, 7560},  {29, 5200}, {30, 7130},   {32, 6000},   {33, 6000},
        {38, 7145},  {39, 8900},  {87, 8300}, {110, 7590},  {112, 8900},  {122, 7140},
        {123, 7585}, {161, 7580}, {6, 8000},  {1004, 8300}, {1113, 6505}, {0x80030070, 8900},
        {80, 8000},  {31, 8000},
    };
    for (const SystemErrorCase& each : cases) {
        SetLastError(each.error);
        EXPECT_EQ(n_translateSystemError(), each.status) << "error " << each.error;
        const Texts params = error_params();
        ASSERT_EQ(params.size(), 3u);
        EXPECT_EQ(params[0], "0");
        EXPECT_EQ(std::stoul(params[1], nullptr, 16), each.error);
        EXPECT_NE(params[2], "") << "error " << each.error;
    }
}

TEST(SystemError, NoErrorIsSuccessAndLeavesTheParameters) {
    mark_error_params();
    SetLastError(NO_ERROR);
    EXPECT_EQ(n_translateSystemError(), status::kSuccess);
    EXPECT_EQ(error_params(), kUnchanged);
}

struct FormCase {
    DWORD code;
    bool is_com_result;
    Texts params; // an empty last text stands for the system's own message
};

TEST(SystemError, FormNamesTheCodeWhereTheSystemHasNoText) {
    const FormCase cases[] = {
        {2, false, {"0", "2", ""}},
        {0x80030002, true, {"1", "80030002", ""}},
        {0xDEAD, false, {"0", "dead", "Unknown or new error"}},
        {0x8ABC1234, true, {"1", "8abc1234", "Unknown or new error"}},
        {0x80040110 + 0x80, true, {"1", "80040190", "Unknown or new error"}},
    };
    for (const FormCase& each : cases) {
        v_setErrorParamSystem(each.code, each.is_com_result);
        Texts params = error_params();
        ASSERT_EQ(params.size(), 3u);
        if (each.params.back().empty()) {
            EXPECT_GT(params.back().size(), 5u);
            params.back().clear();
        }
        EXPECT_EQ(params, each.params);
    }
}

TEST(SystemError, ApplicationDefinedCodesHaveNeitherNameNorText) {
    for (const DWORD code : {0x80040200u, 0x8004FFFFu, 0x000407F0u, 0x800A0258u}) {
        v_setErrorParamSystem(code, true);
        const Texts params = error_params();
        ASSERT_EQ(params.size(), 3u);
        EXPECT_EQ(params[2], "") << std::hex << code;
    }
}

} // namespace
} // namespace ppt::test

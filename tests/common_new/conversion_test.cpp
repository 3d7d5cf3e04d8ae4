// Length and limit checks, and conversion between ANSI and UTF-16 in single-byte, double-byte and
// UTF-8 code pages.

#include "common_new/common/conversion.h"
#include "plugin/status.h"
#include "tests/common_new/support.h"

#include <gtest/gtest.h>

namespace ppt::test {
namespace {

using WideString = std::basic_string<WCHAR>;

TEST(Checks, LengthIsBelowTheLimit) {
    mark_error_params();
    EXPECT_TRUE(b_checkLength(std::string(1023, 'x'), 1024));
    EXPECT_TRUE(b_checkLength("", 1));
    EXPECT_EQ(error_params(), kUnchanged);
    const std::string too_long(1024, 'x');
    EXPECT_FALSE(b_checkLength(too_long, 1024));
    EXPECT_EQ(error_params(), Texts({too_long, "1024"}));
    EXPECT_FALSE(b_checkLength("", -1));
}

TEST(Checks, ValueIsAtMostTheLimit) {
    mark_error_params();
    EXPECT_TRUE(b_checkLimit(5, 5));
    EXPECT_TRUE(b_checkLimit(-1, 0));
    EXPECT_EQ(error_params(), kUnchanged);
    EXPECT_FALSE(b_checkLimit(6, 5));
    EXPECT_EQ(error_params(), Texts({"6", "5"}));
}

class Conversion : public testing::Test {
  protected:
    Conversion() {
        mark_error_params();
        SetLastError(ERROR_INSUFFICIENT_BUFFER); // left over from an earlier call
    }

    const CodePage western_{1252};
};

TEST_F(Conversion, NullArgumentsAreRefusedWithoutParameters) {
    WCHAR wide[4] = {};
    char ansi[4] = {};
    EXPECT_EQ(j_ansiToWide(nullptr, wide, 4), 8300);
    EXPECT_EQ(j_ansiToWide("a", nullptr, 4), 8300);
    EXPECT_EQ(j_wideToAnsi(nullptr, -1, ansi, 4), 8300);
    EXPECT_EQ(j_wideToAnsi(WIDE("a"), -1, nullptr, 4), 8300);
    EXPECT_EQ(error_params(), kUnchanged);
}

TEST_F(Conversion, SingleByteTextConvertsBothWaysWithItsTerminator) {
    WCHAR wide[8] = {};
    std::int32_t count = 0;
    EXPECT_EQ(j_ansiToWide("caf\xE9\x80", wide, 6, &count), 0);
    EXPECT_EQ(WideString(wide), WIDE("caf\u00e9\u20ac"));
    EXPECT_EQ(count, 6);
    char ansi[8] = {};
    EXPECT_EQ(j_wideToAnsi(wide, -1, ansi, 6, &count), 0);
    EXPECT_STREQ(ansi, "caf\xE9\x80");
    EXPECT_EQ(count, 6);
    EXPECT_EQ(j_wideToAnsi(WIDE(""), -1, ansi, 8, &count), 0);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(j_wideToAnsi(WIDE("abc"), 2, ansi, 2, &count), 0);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(error_params(), kUnchanged);
}

TEST_F(Conversion, ADestinationTooSmallNamesTheSizes) {
    WCHAR wide[5] = {};
    EXPECT_EQ(j_ansiToWide("abcde", wide, 5), 7140);
    EXPECT_EQ(error_params(), Texts({"abcde", "5"}));
    char ansi[2] = {};
    EXPECT_EQ(j_wideToAnsi(WIDE("abcde"), -1, ansi, 2), 7140);
    EXPECT_EQ(error_params(), Texts({"6", "2"}));
    EXPECT_EQ(j_wideToAnsi(WIDE("abcde"), 3, ansi, 2), 7140);
    EXPECT_EQ(error_params(), Texts({"3", "2"}));
}

TEST_F(Conversion, CharactersWithoutAnAnsiFormBecomeTheDefaultCharacter) {
    EXPECT_EQ(ansi_from_wide(WIDE("a\u30bdb")), "a?b");
}

TEST_F(Conversion, DoubleByteTextSucceedsWithoutACount) {
    const CodePage shift_jis(932);
    ASSERT_TRUE(shift_jis.known());
    WCHAR wide[8] = {};
    std::int32_t count = -5;
    EXPECT_EQ(j_ansiToWide("a\x83\x5C", wide, 8, &count), 0);
    EXPECT_EQ(WideString(wide), WIDE("a\u30bd"));
    EXPECT_EQ(count, -5);
    EXPECT_EQ(error_params(), kUnchanged);
    EXPECT_EQ(j_ansiToWide("a\x83\x5C", wide, 2), 7140);
}

TEST_F(Conversion, WholeTextsComeBackInEveryCodePage) {
    struct Case {
        UINT page;
        const char* ansi;
        const WCHAR* wide;
    };
    const Case cases[] = {
        {1252, "caf\xE9", WIDE("caf\u00e9")},
        {932, "\x83\x5C\x83\x7D\\a", WIDE("\u30bd\u30de\\a")},
        {936, "\xD6\xD0.ppt", WIDE("\u4e2d.ppt")},
        {949, "\xB0\xA1", WIDE("\uac00")},
        {950, "\xA4\xA4", WIDE("\u4e2d")},
        {CP_UTF8, "\xF0\x9F\x98\x80 \xE4\xB8\xAD", WIDE("\U0001F600 \u4e2d")},
    };
    for (const Case& each : cases) {
        const CodePage page(each.page);
        ASSERT_TRUE(page.known()) << each.page;
        EXPECT_EQ(wide_from_ansi(each.ansi), each.wide) << each.page;
        EXPECT_EQ(ansi_from_wide(each.wide), each.ansi) << each.page;
    }
}

TEST_F(Conversion, EmptyLongAndZeroHoldingTextsKeepTheirLength) {
    EXPECT_EQ(wide_from_ansi(""), WIDE(""));
    EXPECT_EQ(ansi_from_wide(WIDE("")), "");
    EXPECT_EQ(wide_from_ansi(std::string(5000, 'x')).size(), 5000u);
    const std::string zeros("a\0\0b\0", 5);
    EXPECT_EQ(ansi_from_wide(wide_from_ansi(zeros)), zeros);
}

TEST_F(Conversion, PathAndUserNameAreTheParametersOfAnAccessFailure) {
    ASSERT_NE(user_name(), "");
    v_setErrorParamTextAndUser("C:\\caf\xE9.ppt");
    EXPECT_EQ(error_params(), Texts({"C:\\caf\xC3\xA9.ppt", user_name()}));
    v_setErrorParamTextAndUser(WIDE("C:\\a.ppt"));
    EXPECT_EQ(error_params(), Texts({"C:\\a.ppt", user_name()}));
    mark_error_params();
    v_setErrorParamTextAndUser(WideString(1024, 'x').c_str());
    EXPECT_EQ(error_params(), kUnchanged);
}

} // namespace
} // namespace ppt::test

// Code page conversions by the system's buffer and error rules.
#include "platform/posix/kernel.h"
#include "platform/posix/locale_code_page.h"
#include "platform/posix/settings.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

class CodePages : public testing::Test {
  protected:
    void SetUp() override { SetLastError(NO_ERROR); }
    void TearDown() override { platform::set_ansi_code_page(CP_UTF8); }
};

std::u16string to_wide(UINT page, const std::string& text, DWORD flags = 0) {
    WCHAR buffer[64] = {};
    const int count =
        MultiByteToWideChar(page, flags, text.data(), static_cast<int>(text.size()), buffer, 64);
    return {buffer, static_cast<std::size_t>(count)};
}

std::string to_ansi(UINT page, const std::u16string& text) {
    char buffer[64] = {};
    const int count = WideCharToMultiByte(page, 0, text.data(), static_cast<int>(text.size()),
                                          buffer, 64, nullptr, nullptr);
    return {buffer, static_cast<std::size_t>(count)};
}

TEST_F(CodePages, ConvertBothWays) {
    EXPECT_EQ(to_wide(1252, "\x80uro \xFC"), u"\u20ACuro \u00FC");
    EXPECT_EQ(to_ansi(1252, u"\u20ACuro \u00FC"), "\x80uro \xFC");
    EXPECT_EQ(to_wide(932, "\x95\x5C.ppt"), u"\u8868.ppt");
    EXPECT_EQ(to_ansi(932, u"\u8868.ppt"), "\x95\x5C.ppt");
    EXPECT_EQ(to_wide(CP_UTF8, "\xF0\x9F\x98\x80"), u"\U0001F600");
    EXPECT_EQ(to_ansi(CP_UTF8, u"\U0001F600"), "\xF0\x9F\x98\x80");
}

TEST_F(CodePages, TheAnsiPageIsTheChosenOne) {
    ASSERT_TRUE(platform::set_ansi_code_page(932));
    EXPECT_EQ(GetACP(), 932u);
    EXPECT_EQ(to_wide(CP_ACP, "\x95\x5C"), u"\u8868");
    EXPECT_TRUE(IsDBCSLeadByte(0x95));
    EXPECT_FALSE(IsDBCSLeadByte('a'));
    EXPECT_FALSE(platform::set_ansi_code_page(4711));
    EXPECT_FALSE(platform::set_ansi_code_page(1200)); // UTF-16 is no page for byte texts
    EXPECT_EQ(GetACP(), 932u);
}

TEST_F(CodePages, LengthMinusOneCountsTheTerminator) {
    WCHAR wide[4] = {1, 1, 1, 1};
    EXPECT_EQ(MultiByteToWideChar(1252, 0, "ab", -1, wide, 4), 3);
    EXPECT_EQ(wide[2], 0);
    EXPECT_EQ(wide[3], 1); // nothing behind the text is touched
    char ansi[4];
    EXPECT_EQ(WideCharToMultiByte(1252, 0, u"", -1, ansi, 4, nullptr, nullptr), 1);
}

TEST_F(CodePages, ADestinationOfSizeZeroOnlyCounts) {
    EXPECT_EQ(MultiByteToWideChar(932, 0, "\x95\x5C!", 3, nullptr, 0), 2);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, u"\u00FC", 1, nullptr, 0, nullptr, nullptr), 2);
    EXPECT_EQ(GetLastError(), NO_ERROR);
}

TEST_F(CodePages, ATooSmallDestinationIsAnError) {
    WCHAR wide[2];
    EXPECT_EQ(MultiByteToWideChar(1252, 0, "ab", -1, wide, 2), 0);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    SetLastError(NO_ERROR);
    char ansi[1];
    EXPECT_EQ(WideCharToMultiByte(932, 0, u"\u8868", 1, ansi, 1, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
}

TEST_F(CodePages, BadArgumentsAreRefused) {
    WCHAR wide[4];
    const auto refused = [&](UINT page, const char* source, int length, WCHAR* out, int size) {
        SetLastError(NO_ERROR);
        return MultiByteToWideChar(page, 0, source, length, out, size) == 0 &&
               GetLastError() == ERROR_INVALID_PARAMETER;
    };
    EXPECT_TRUE(refused(1252, "a", 0, wide, 4));
    EXPECT_TRUE(refused(1252, nullptr, 1, wide, 4));
    EXPECT_TRUE(refused(1252, "a", 1, nullptr, 4));
    EXPECT_TRUE(refused(1252, "a", 1, wide, -1));
    EXPECT_TRUE(refused(4711, "a", 1, wide, 4));
    EXPECT_EQ(MultiByteToWideChar(1252, 0x40, "a", 1, wide, 4), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_FLAGS);
    BOOL used = FALSE;
    char ansi[4];
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, u"a", 1, ansi, 4, nullptr, &used), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST_F(CodePages, WhatDoesNotConvertIsReplacedUnlessAskedNot) {
    EXPECT_EQ(to_ansi(1252, u"a\u8868"), "a?");
    EXPECT_EQ(to_wide(CP_UTF8, "a\xFF"), u"a\uFFFD");
    EXPECT_EQ(GetLastError(), NO_ERROR);
    EXPECT_EQ(to_wide(CP_UTF8, "a\xFF", MB_ERR_INVALID_CHARS), u"");
    EXPECT_EQ(GetLastError(), ERROR_NO_UNICODE_TRANSLATION);

    BOOL used = FALSE;
    char ansi[4] = {};
    EXPECT_EQ(WideCharToMultiByte(1252, 0, u"a\u8868", 2, ansi, 4, "_", &used), 2);
    EXPECT_STREQ(ansi, "a_");
    EXPECT_TRUE(used);
}

TEST_F(CodePages, TheLocaleOfTheEnvironmentNamesThePage) {
    const auto page_of = [](const char* locale) {
        setenv("LC_ALL", locale, 1);
        const UINT page = platform::code_page_of_locale();
        unsetenv("LC_ALL");
        return page;
    };
    EXPECT_EQ(page_of("C"), CP_UTF8);
    EXPECT_EQ(page_of("POSIX"), CP_UTF8);
    EXPECT_EQ(page_of("C.UTF-8"), CP_UTF8);
    EXPECT_EQ(page_of("xx_YY.CP1252"), 1252u); // not installed: its name tells
    EXPECT_EQ(page_of("xx_YY.SJIS@x"), 932u);
    EXPECT_EQ(page_of("xx_YY"), CP_UTF8);
}

// Settings from the environment are read once, so each case needs a process of its own.
TEST(SettingsDeathTest, TheEnvironmentFillsThem) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            setenv("PPT_CODE_PAGE", "936", 1);
            std::exit(GetACP() == 936 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    EXPECT_EXIT(
        {
            setenv("PPT_CODE_PAGE", "1252x", 1);
            setenv("LC_ALL", "C", 1);
            std::exit(GetACP() == CP_UTF8 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    EXPECT_EXIT(
        {
            setenv("PPT_DRIVES", "Z:=\\\\srv\\pub;nonsense;\\\\srv\\pub=/no-such;Y:=/y", 1);
            const bool later_entry_counts = platform::map_drive("Y:=/other");
            std::exit(later_entry_counts && platform::to_native_path("Z:\\a") == "/no-such/a" &&
                              platform::to_native_path("Y:\\a") == "/other/a"
                          ? 0
                          : 1);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace

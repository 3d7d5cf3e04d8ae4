// Code pages and letter case, on which names depend.
#include "platform/code_page/code_page.h"
#include "platform/unicode/upcase.h"

#include <gtest/gtest.h>

namespace {

bytes::Bytes bytes_of(std::string_view text) {
    return {text.begin(), text.end()};
}

constexpr std::uint32_t kSingleBytePages[] = {874,   1250, 1251, 1252, 1253, 1254,
                                              1255,  1256, 1257, 1258, 437,  850,
#if !defined(_WIN32) // whose tables leave bytes of this one out
                                              10000,
#endif
                                              28591, 28605};

TEST(CodePage, EveryByteOfAnAnsiPageSurvivesARoundTrip) {
    for (const std::uint32_t page : kSingleBytePages) {
        bytes::Bytes all;
        for (int byte = 0; byte < 256; ++byte) {
            all.push_back(static_cast<std::uint8_t>(byte));
        }
        const auto text = code_page::decode(page, all);
        ASSERT_TRUE(text) << page;
        EXPECT_EQ(text->size(), all.size()) << page;
        EXPECT_EQ(code_page::encode(page, *text), all) << page;
    }
    EXPECT_EQ(code_page::decode(1252, bytes_of("\x80\x81")), u"\u20AC\u0081");
}

TEST(CodePage, DoubleByteTextsSurviveARoundTrip) {
    const std::pair<std::uint32_t, std::u16string> texts[]{
        {932, u"A\u3042\uFF71\u8868\\"}, // the third is a single byte, the fourth ends in 0x5C
        {936, u"A\u4E2D\u20AC"},
        {949, u"A\uAC00\uD7A3"},
        {950, u"A\u4E2D\u529F"},
    };
    for (const auto& [page, text] : texts) {
        const auto encoded = code_page::encode(page, text);
        ASSERT_TRUE(encoded) << page;
        EXPECT_EQ(code_page::decode(page, *encoded), text) << page;
        EXPECT_TRUE(code_page::is_lead_byte(page, encoded->at(1)));
    }
    EXPECT_EQ(code_page::encode(932, u"\u8868"), bytes_of("\x95\x5C"));
}

TEST(CodePage, WhatDoesNotConvertIsRefusedOrReplaced) {
    EXPECT_EQ(code_page::encode(1252, u"a\u3042"), std::nullopt);
    bool replaced = false;
    EXPECT_EQ(code_page::encode_lossy(1252, u"a\u3042", '?', &replaced), bytes_of("a?"));
    EXPECT_TRUE(replaced);
    EXPECT_EQ(code_page::encode_lossy(932, u"\U0001F600"), bytes_of("\?\?"));
    EXPECT_EQ(code_page::decode(932, bytes_of("\x81\x20z")), std::nullopt);
    EXPECT_EQ(code_page::decode_lossy(932, bytes_of("\x81\x20z\x81")), u"\uFFFD z\uFFFD");
    EXPECT_EQ(code_page::decode(65001, bytes_of("\xC0\x80")), std::nullopt);
    EXPECT_EQ(code_page::decode(65001, bytes_of("\xED\xA0\x80")), std::nullopt);
    EXPECT_EQ(code_page::decode_lossy(65001, bytes_of("a\xF0\x9F\x98")), u"a\uFFFD");
    EXPECT_EQ(code_page::encode(65001, u"\xD83D"), std::nullopt);
    EXPECT_EQ(code_page::encode(65001, u"\U0001F600"), bytes_of("\xF0\x9F\x98\x80"));
    EXPECT_EQ(code_page::decode(1200, bytes_of("abc")), std::nullopt);
    EXPECT_FALSE(code_page::known(4711));
}

TEST(Upcase, FollowsTheSimpleMappingsOfUnicode) {
    const std::pair<char16_t, char16_t> mappings[]{
        {u'z', u'Z'},           {u'[', u'['},           {u'\u00E4', u'\u00C4'},
        {u'\u00DF', u'\u00DF'}, {u'\u00FF', u'\u0178'}, {u'\u0107', u'\u0106'},
        {u'\u0106', u'\u0106'}, {u'\u0451', u'\u0401'}, {u'\uFF5A', u'\uFF3A'},
        {u'\u4E2D', u'\u4E2D'}, {0xD83D, 0xD83D},       {0xDE00, 0xDE00},
    };
    for (const auto& [lower, upper] : mappings) {
        EXPECT_EQ(unicode::upper(lower), upper) << static_cast<int>(lower);
    }
}

} // namespace

// Conversion there and back in every code page: what converts strictly converts the same way
// loosely, and comes back as it was.
#include "fuzz/support/target.h"
#include "platform/code_page/code_page.h"
#include "platform/unicode/utf8.h"

#include <algorithm>
#include <array>

namespace {

using fuzz::require;

constexpr std::array<std::uint32_t, 16> kPages = {
    437, 850, 874, 932, 936, 949, 950, 1200, 1250, 1252, 1255, 10000, 28591, 1257, 1258, 65001};

void from_bytes(std::uint32_t page, bytes::View data) {
    const auto loose = code_page::decode_lossy(page, data);
    require(loose.has_value(), "a known page decodes anything");
    const auto text = code_page::decode(page, data);
    if (!text) {
        return;
    }
    require(*text == *loose, "decoding is the same whether or not it may lose something");
    const auto again = code_page::encode(page, *text);
    // Lone surrogates are no text in UTF-8 and none comes out of it.
    require(again.has_value(), "what was decoded can be encoded");
    require(code_page::decode(page, *again) == text, "and then means the same");
    if (page == code_page::kUtf8 || page == code_page::kUtf16 || !code_page::is_double_byte(page)) {
        require(std::equal(again->begin(), again->end(), data.begin(), data.end()),
                "a page without two codes for a character gives its bytes back");
    }
}

void from_text(std::uint32_t page, bytes::View data) {
    std::u16string text;
    for (std::size_t at = 0; at + 2 <= data.size(); at += 2) {
        text.push_back(static_cast<char16_t>(bytes::load_u16(data, at)));
    }
    bool replaced = false;
    const auto loose = code_page::encode_lossy(page, text, '?', &replaced);
    require(loose.has_value(), "a known page encodes anything");
    const auto encoded = code_page::encode(page, text);
    require(encoded.has_value() != replaced, "strictness is about what had to be replaced");
    if (encoded) {
        require(*encoded == *loose, "encoding is the same whether or not it may lose something");
        require(code_page::decode(page, *encoded) == text, "text comes back as it was");
    }
    require(unicode::utf8_to_utf16(unicode::utf16_to_utf8_lossy(text)).has_value(),
            "UTF-8 that is made of any units is well formed");
}

} // namespace

void fuzz::test_one(bytes::View data) {
    bytes::Cursor input(data);
    const std::uint32_t page = kPages[input.u8() % kPages.size()];
    const bytes::View rest = input.take(input.remaining());
    from_bytes(page, rest);
    from_text(page, rest);
    require(unicode::utf16_to_utf8(unicode::utf8_to_utf16_lossy(
                                       {reinterpret_cast<const char*>(rest.data()), rest.size()}))
                .has_value(),
            "UTF-16 that is made of any bytes is well formed");
}

// See utf8.h.
#include "platform/unicode/utf8.h"

#include <cstddef>
#include <cstdint>

namespace unicode {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kInvalid = 0xFFFFFFFF;

constexpr bool is_high_half(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool is_low_half(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

// One character from `text` at `at`, which moves behind it. After something that is not well formed
// the result is kInvalid and `at` stands behind the longest beginning of a valid sequence.
char32_t next_utf8(std::string_view text, std::size_t& at) {
    const auto lead = static_cast<std::uint8_t>(text[at++]);
    if (lead < 0x80) {
        return lead;
    }
    if (lead < 0xC2 || lead > 0xF4) {
        return kInvalid;
    }
    const int following = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    char32_t character = lead & (0x3Fu >> following);
    // The bounds of the second byte leave out overlong forms, surrogates and what is above
    // U+10FFFF.
    std::uint8_t lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    std::uint8_t highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    for (int i = 0; i < following; ++i) {
        if (at == text.size()) {
            return kInvalid;
        }
        const auto byte = static_cast<std::uint8_t>(text[at]);
        if (byte < lowest || byte > highest) {
            return kInvalid;
        }
        character = (character << 6) | (byte & 0x3Fu);
        lowest = 0x80;
        highest = 0xBF;
        ++at;
    }
    return character;
}

char32_t next_utf16(std::u16string_view text, std::size_t& at) {
    const char32_t unit = text[at++];
    if (is_low_half(unit)) {
        return kInvalid;
    }
    if (!is_high_half(unit)) {
        return unit;
    }
    if (at == text.size() || !is_low_half(text[at])) {
        return kInvalid;
    }
    return 0x10000 + ((unit - 0xD800) << 10) + (text[at++] - char32_t{0xDC00});
}

void append_utf16(std::u16string& out, char32_t character) {
    if (character < 0x10000) {
        out.push_back(static_cast<char16_t>(character));
        return;
    }
    out.push_back(static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF)));
}

void append_utf8(std::string& out, char32_t character) {
    const auto byte = [&out](char32_t value) { out.push_back(static_cast<char>(value)); };
    if (character < 0x80) {
        byte(character);
        return;
    }
    if (character < 0x800) {
        byte(0xC0 | (character >> 6));
    } else if (character < 0x10000) {
        byte(0xE0 | (character >> 12));
        byte(0x80 | ((character >> 6) & 0x3F));
    } else {
        byte(0xF0 | (character >> 18));
        byte(0x80 | ((character >> 12) & 0x3F));
        byte(0x80 | ((character >> 6) & 0x3F));
    }
    byte(0x80 | (character & 0x3F));
}

// Converts to the end, or to the first invalid part when `strict`; says whether all was valid.
template <class Text, class Out, class Next, class Append>
bool convert(const Text& text, Out& out, Next next, Append append, bool strict) {
    out.reserve(text.size());
    bool valid = true;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t character = next(text, at);
        if (character == kInvalid) {
            valid = false;
            if (strict) {
                return false;
            }
        }
        append(out, character == kInvalid ? kReplacement : character);
    }
    return valid;
}

} // namespace

std::optional<std::u16string> utf8_to_utf16(std::string_view text) {
    std::u16string out;
    if (!convert(text, out, next_utf8, append_utf16, true)) {
        return std::nullopt;
    }
    return out;
}

std::optional<std::string> utf16_to_utf8(std::u16string_view text) {
    std::string out;
    if (!convert(text, out, next_utf16, append_utf8, true)) {
        return std::nullopt;
    }
    return out;
}

std::u16string utf8_to_utf16_lossy(std::string_view text) {
    std::u16string out;
    convert(text, out, next_utf8, append_utf16, false);
    return out;
}

std::string utf16_to_utf8_lossy(std::u16string_view text) {
    std::string out;
    convert(text, out, next_utf16, append_utf8, false);
    return out;
}

} // namespace unicode

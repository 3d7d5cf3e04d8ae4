// See code_page.h.
#include "platform/code_page/code_page.h"

#include "platform/code_page/page_table.h"
#include "platform/unicode/utf8.h"

namespace code_page {
namespace {

constexpr char16_t kReplacementUnit = 0xFFFD;

std::string_view as_chars(bytes::View text) {
    return {reinterpret_cast<const char*>(text.data()), text.size()};
}

bytes::Bytes as_bytes(std::string_view text) {
    return {text.begin(), text.end()};
}

std::u16string decode_utf16(bytes::View text) {
    std::u16string out;
    out.reserve(text.size() / 2);
    for (std::size_t at = 0; at + 2 <= text.size(); at += 2) {
        out.push_back(static_cast<char16_t>(bytes::load_u16(text, at)));
    }
    return out;
}

bytes::Bytes encode_utf16(std::u16string_view text) {
    bytes::Bytes out;
    out.reserve(text.size() * 2);
    for (const char16_t unit : text) {
        bytes::append_u16(out, unit);
    }
    return out;
}

// Calls `put` with each unit, 0xFFFD in the place of what the table lacks; whether all was there.
template <class Put>
bool decode_by_table(const PageTable& table, std::uint32_t page, bytes::View text, Put put) {
    bool complete = true;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::uint8_t byte = text[at];
        char16_t unit = table.single(byte);
        if (is_lead_byte(page, byte) && at + 1 < text.size()) {
            unit = table.pair(byte, text[at + 1]);
            at += unit != 0 ? 1 : 0;
        }
        if (unit == 0 && byte != 0) {
            complete = false;
            unit = kReplacementUnit;
        }
        put(unit);
    }
    return complete;
}

// The same the other way.
bool encode_by_table(const PageTable& table, std::u16string_view text, char replacement,
                     bytes::Bytes& out) {
    bool complete = true;
    out.reserve(text.size());
    for (const char16_t unit : text) {
        std::uint16_t code = table.code(unit);
        if (code == 0 && unit != 0) {
            complete = false;
            code = static_cast<std::uint8_t>(replacement);
        }
        if (code > 0xFF) {
            bytes::append_u8(out, static_cast<std::uint8_t>(code >> 8));
        }
        bytes::append_u8(out, static_cast<std::uint8_t>(code));
    }
    return complete;
}

} // namespace

bool known(std::uint32_t page) {
    return page == kUtf16 || page == kUtf8 || PageTable::find(page) != nullptr;
}

std::optional<std::u16string> decode(std::uint32_t page, bytes::View text) {
    if (page == kUtf8) {
        return unicode::utf8_to_utf16(as_chars(text));
    }
    if (page == kUtf16) {
        return text.size() % 2 == 0 ? std::optional(decode_utf16(text)) : std::nullopt;
    }
    const PageTable* table = PageTable::find(page);
    std::u16string out;
    out.reserve(text.size());
    if (table == nullptr ||
        !decode_by_table(*table, page, text, [&out](char16_t unit) { out.push_back(unit); })) {
        return std::nullopt;
    }
    return out;
}

std::optional<bytes::Bytes> encode(std::uint32_t page, std::u16string_view text) {
    if (page == kUtf8) {
        const auto converted = unicode::utf16_to_utf8(text);
        return converted ? std::optional(as_bytes(*converted)) : std::nullopt;
    }
    bool replaced = false;
    auto out = encode_lossy(page, text, '?', &replaced);
    return replaced ? std::nullopt : out;
}

std::optional<std::u16string> decode_lossy(std::uint32_t page, bytes::View text) {
    if (page == kUtf8) {
        return unicode::utf8_to_utf16_lossy(as_chars(text));
    }
    if (page == kUtf16) {
        return decode_utf16(text);
    }
    const PageTable* table = PageTable::find(page);
    if (table == nullptr) {
        return std::nullopt;
    }
    std::u16string out;
    out.reserve(text.size());
    decode_by_table(*table, page, text, [&out](char16_t unit) { out.push_back(unit); });
    return out;
}

std::optional<bytes::Bytes> encode_lossy(std::uint32_t page, std::u16string_view text,
                                         char replacement, bool* replaced) {
    bool complete = true;
    std::optional<bytes::Bytes> out;
    if (page == kUtf8) {
        complete = unicode::utf16_to_utf8(text).has_value();
        out = as_bytes(unicode::utf16_to_utf8_lossy(text));
    } else if (page == kUtf16) {
        out = encode_utf16(text);
    } else if (const PageTable* table = PageTable::find(page)) {
        complete = encode_by_table(*table, text, replacement, out.emplace());
    }
    if (replaced != nullptr) {
        *replaced = !complete;
    }
    return out;
}

bool is_double_byte(std::uint32_t page) {
    return page == 932 || page == 936 || page == 949 || page == 950;
}

bool is_lead_byte(std::uint32_t page, std::uint8_t byte) {
    if (page == 932) {
        return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
    }
    return is_double_byte(page) && byte >= 0x81 && byte <= 0xFE;
}

} // namespace code_page

#include "pptlinks/text_encoding.h"

#include <algorithm>

namespace pptlinks {

namespace {

constexpr WCHAR kReplacement = 0xFFFD;

// For text that the system refuses to decode as a whole: the ASCII in it can still be read.
WideString ascii_part(std::string_view text) {
    WideString wide;
    wide.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        wide.push_back(byte < 0x80 ? static_cast<WCHAR>(byte) : kReplacement);
    }
    return wide;
}

WideString decode(UINT code_page, std::string_view text) {
    if (text.empty()) {
        return {};
    }
    const int length = static_cast<int>(text.size());
    const int needed = MultiByteToWideChar(code_page, 0, text.data(), length, nullptr, 0);
    WideString wide(static_cast<std::size_t>(std::max(needed, 0)), 0);
    if (needed <= 0 ||
        MultiByteToWideChar(code_page, 0, text.data(), length, wide.data(), needed) != needed) {
        return ascii_part(text);
    }
    return wide;
}

bool is_lead(WCHAR unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
bool is_trail(WCHAR unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

void append_utf8(std::string& out, std::uint32_t code) {
    const auto tail = [&out](std::uint32_t bits) {
        out.push_back(static_cast<char>(0x80 | (bits & 0x3F)));
    };
    if (code < 0x80) {
        out.push_back(static_cast<char>(code));
    } else if (code < 0x800) {
        out.push_back(static_cast<char>(0xC0 | code >> 6));
        tail(code);
    } else if (code < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | code >> 12));
        tail(code >> 6);
        tail(code);
    } else {
        out.push_back(static_cast<char>(0xF0 | code >> 18));
        tail(code >> 12);
        tail(code >> 6);
        tail(code);
    }
}

} // namespace

WideString wide_from_ansi(std::string_view text) {
    return decode(CP_ACP, text);
}

WideString wide_from_utf8(std::string_view text) {
    return decode(CP_UTF8, text);
}

std::string utf8_from_wide(WideView text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const std::uint32_t code = take_character(text, position);
        const bool is_half = code >= 0xD800 && code < 0xE000;
        append_utf8(utf8, is_half ? kReplacement : code);
    }
    return utf8;
}

std::uint32_t take_character(WideView text, std::size_t& position) {
    const std::uint32_t unit = text[position++];
    if (!is_lead(text[position - 1]) || position == text.size() || !is_trail(text[position])) {
        return unit;
    }
    return 0x10000 + ((unit - 0xD800) << 10) + (text[position++] - 0xDC00u);
}

bool is_utf8(std::string_view text) {
    return utf8_from_wide(wide_from_utf8(text)) == text;
}

std::optional<std::string> ansi_from_utf8(std::string_view text) {
    // Names of the file system are bytes: in a UTF-8 system even those that are not UTF-8 pass.
    if (text.empty() || GetACP() == CP_UTF8) {
        return std::string(text);
    }
    const WideString wide = wide_from_utf8(text);
    const int length = static_cast<int>(wide.size());
    const int needed =
        WideCharToMultiByte(CP_ACP, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
    std::string ansi(static_cast<std::size_t>(std::max(needed, 0)), '\0');
    if (needed <= 0 || WideCharToMultiByte(CP_ACP, 0, wide.data(), length, ansi.data(), needed,
                                           nullptr, nullptr) != needed) {
        return std::nullopt;
    }
    // A character without a form in the code page was replaced by a similar one or by '?'.
    return wide_from_ansi(ansi) == wide ? std::optional(ansi) : std::nullopt;
}

} // namespace pptlinks

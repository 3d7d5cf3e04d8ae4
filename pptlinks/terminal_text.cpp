#include "pptlinks/terminal_text.h"

#include "pptlinks/text_encoding.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace pptlinks {

namespace {

struct CodeRange {
    std::uint32_t first;
    std::uint32_t last;
};

// Controls, format controls that reorder or hide text, letters that show nothing, and what is no
// character. Ascending.
constexpr CodeRange kUnprintable[] = {
    {0x0000, 0x001F},   {0x007F, 0x009F},   {0x00AD, 0x00AD},   {0x034F, 0x034F},
    {0x061C, 0x061C},   {0x115F, 0x1160},   {0x17B4, 0x17B5},   {0x180E, 0x180E},
    {0x200B, 0x200B},   {0x200E, 0x200F},   {0x2028, 0x202E},   {0x2060, 0x206F},
    {0x3164, 0x3164},   {0xD800, 0xDFFF},   {0xFDD0, 0xFDEF},   {0xFEFF, 0xFEFF},
    {0xFFA0, 0xFFA0},   {0xFFF0, 0xFFFB},   {0xFFFE, 0xFFFF},   {0x1BCA0, 0x1BCA3},
    {0x1D173, 0x1D17A}, {0x1FFFE, 0x1FFFF}, {0x2FFFE, 0x2FFFF}, {0x3FFFE, 0x3FFFF},
    {0xE0000, 0xE0FFF}, {0xF0000, 0x10FFFF}};

// Joiners and variation selectors: they shape the scripts that need them and hide elsewhere.
// Ascending.
constexpr CodeRange kJoining[] = {
    {0x180B, 0x180D}, {0x180F, 0x180F}, {0x200C, 0x200D}, {0xFE00, 0xFE0F}};

// East Asian characters and pictures that fill two columns. Ascending.
constexpr CodeRange kWide[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0xA4CF},
                               {0xA960, 0xA97C},   {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},
                               {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},
                               {0x1F300, 0x1F64F}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};

// Marks that combine with the character before them, and what joins it. Ascending.
constexpr CodeRange kZeroWidth[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x064B, 0x065F}, {0x0E31, 0x0E31},
    {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x180B, 0x180D}, {0x180F, 0x180F}, {0x200C, 0x200D},
    {0x20D0, 0x20FF}, {0x302A, 0x302D}, {0x3099, 0x309A}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}};

template <std::size_t count>
bool contains(const CodeRange (&ranges)[count], std::uint32_t code) {
    const auto* const range =
        std::lower_bound(std::begin(ranges), std::end(ranges), code,
                         [](const CodeRange& a, std::uint32_t b) { return a.last < b; });
    return range != std::end(ranges) && range->first <= code;
}

std::size_t append_escape(std::string& out, std::uint32_t code) {
    char text[16];
    const int length = std::snprintf(text, sizeof text, code < 0x80 ? "\\x%02X" : "<U+%04X>", code);
    out.append(text, static_cast<std::size_t>(length));
    return static_cast<std::size_t>(length);
}

} // namespace

bool is_printable(std::uint32_t code) {
    return !contains(kUnprintable, code) && !contains(kJoining, code);
}

std::size_t append_terminal_text(std::string& out, WideView text) {
    std::size_t columns = 0;
    std::uint32_t before = 0;
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t start = position;
        const std::uint32_t code = take_character(text, position);
        const bool hides = contains(kJoining, code) && (before < 0x80 || !is_printable(before));
        before = code;
        if (code >= 0x20 && code < 0x7F) {
            out.push_back(static_cast<char>(code));
            ++columns;
        } else if (hides || contains(kUnprintable, code)) {
            columns += append_escape(out, code);
        } else {
            out += utf8_from_wide(text.substr(start, position - start));
            columns += contains(kZeroWidth, code) ? 0 : contains(kWide, code) ? 2 : 1;
        }
    }
    return columns;
}

std::string terminal_text(WideView text) {
    std::string out;
    append_terminal_text(out, text);
    return out;
}

std::string terminal_text_from_utf8(std::string_view text) {
    return terminal_text(wide_from_utf8(text));
}

} // namespace pptlinks

// Text in a Windows code page to UTF-16 and back. The tables come from the system (converter.h),
// one page at a time, at the first use of the page; they then stay for the life of the process, and
// all functions may be called from several threads at once.
//
// Known pages: the ASCII-based single-byte ones (437, 850, 852, 866, 874, 1250 to 1258, 10000,
// 28591 ...), 932, 936, 949 and 950, and the Unicode pages 1200 (UTF-16LE) and 65001 (UTF-8). As on
// Windows, bytes that a 125x page or 874 leaves undefined map to the control character of the same
// value (0x81 to U+0081) or to the private use units reserved for them, both ways; so with these
// pages all bytes survive a round trip. Letters outside a page are never replaced by similar ones.
//
// Cost: linear in the text; the first use of a double-byte page costs some 10 ms once.
#pragma once

#include "platform/base/bytes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace code_page {

inline constexpr std::uint32_t kUtf16 = 1200;
inline constexpr std::uint32_t kUtf8 = 65001;

// Whether the page can be converted here.
bool known(std::uint32_t page);

// All of the text, or nothing when a part cannot be converted or the page is not known.
std::optional<std::u16string> decode(std::uint32_t page, bytes::View text);
std::optional<bytes::Bytes> encode(std::uint32_t page, std::u16string_view text);

// All of the text with U+FFFD for each byte or character that cannot be converted. Nothing only
// when the page is not known.
std::optional<std::u16string> decode_lossy(std::uint32_t page, bytes::View text);

// All of the text with `replacement` for each UTF-16 unit that cannot be converted (with U+FFFD
// under 65001); `replaced`, when given, says whether that happened. Nothing only when the page is
// not known.
std::optional<bytes::Bytes> encode_lossy(std::uint32_t page, std::u16string_view text,
                                         char replacement = '?', bool* replaced = nullptr);

// Pages with one or two bytes per character; 65001 is not among them.
bool is_double_byte(std::uint32_t page);

// Whether the byte is the first of two in a double-byte page; false in every other page.
bool is_lead_byte(std::uint32_t page, std::uint8_t byte);

} // namespace code_page

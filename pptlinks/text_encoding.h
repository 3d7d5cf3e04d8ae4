// Conversions between the three encodings that meet here: the plug-in's ANSI code page, UTF-16 and
// the UTF-8 of the command line and of all output.
#pragma once

#include "pptlinks/failure.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace pptlinks {

// What does not decode becomes U+FFFD.
WideString wide_from_ansi(std::string_view text);
WideString wide_from_utf8(std::string_view text);

// Always valid UTF-8: half of a surrogate pair becomes U+FFFD.
std::string utf8_from_wide(WideView text);

bool is_utf8(std::string_view text);

// The code point that starts at `position`, which moves behind it; half of a surrogate pair stands
// for itself.
std::uint32_t take_character(WideView text, std::size_t& position);

// None when the ANSI code page has no form of some character.
std::optional<std::string> ansi_from_utf8(std::string_view text);

} // namespace pptlinks

// UTF-8 to UTF-16 and back. The strict functions take nothing that is not well formed: no overlong
// sequence, no surrogate in UTF-8, no half of a pair in UTF-16.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace unicode {

// Nothing when the text is not well formed.
std::optional<std::u16string> utf8_to_utf16(std::string_view text);
std::optional<std::string> utf16_to_utf8(std::u16string_view text);

// U+FFFD for every part that is not well formed.
std::u16string utf8_to_utf16_lossy(std::string_view text);
std::string utf16_to_utf8_lossy(std::u16string_view text);

} // namespace unicode

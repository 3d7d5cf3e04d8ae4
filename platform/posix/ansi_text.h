// Text between the ANSI code page, in which the calls take it, and UTF-8, in which file systems of
// this machine and the settings hold it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

// Nothing when the text does not convert. Under the code page 65001 the bytes are taken as they
// are, since a name on a POSIX file system is bytes.
std::optional<std::string> ansi_to_utf8(std::string_view text);

// The bytes as they are when the text is not UTF-8 or has characters that the code page lacks: a
// path of this machine that nothing has in the code page's reading is tried as such bytes.
std::string utf8_to_ansi(std::string_view text);

} // namespace platform

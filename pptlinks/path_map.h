// Replacing a leading path: what `--map OLD=NEW` does.
//
// Paths are in the ANSI code page; a two-byte character is one character and never holds a
// separator or a letter.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pptlinks {

struct PathMapEntry {
    std::string from; // not empty
    std::string to;   // not empty
};

// `path` with its leading path replaced by the first entry that matches, or none. OLD matches
// without regard to the case of ASCII letters, '/' and '\' are equal, and OLD ends where a name of
// the path ends. Separators at the ends of OLD and NEW are not doubled.
std::optional<std::string> map_path(const std::vector<PathMapEntry>& entries,
                                    std::string_view path);

} // namespace pptlinks

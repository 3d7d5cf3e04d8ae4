#include "pptlinks/path_map.h"

#include "platform/platform.h"

namespace pptlinks {

namespace {

bool is_separator(std::string_view character) {
    return character == "/" || character == "\\";
}

// The character at the start of `text`: one byte, or a lead byte and its trail byte.
std::string_view first_character(std::string_view text) {
    const bool is_pair = text.size() > 1 && IsDBCSLeadByte(static_cast<BYTE>(text.front())) != 0;
    return text.substr(0, is_pair ? 2 : 1);
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool same_character(std::string_view a, std::string_view b) {
    if (a.size() == 1 && b.size() == 1) {
        return lower(a.front()) == lower(b.front()) || (is_separator(a) && is_separator(b));
    }
    return a == b;
}

// Length of `path` without the separators at its end.
std::size_t length_without_end(std::string_view path) {
    std::size_t length = 0;
    for (std::size_t at = 0; at < path.size();) {
        const std::string_view character = first_character(path.substr(at));
        at += character.size();
        if (!is_separator(character)) {
            length = at;
        }
    }
    return length;
}

// What follows `from` in `path`: nothing, or a separator and more. None when it does not lead.
std::optional<std::string_view> rest_behind(std::string_view from, std::string_view path) {
    while (!from.empty() && !path.empty()) {
        const std::string_view expected = first_character(from);
        const std::string_view found = first_character(path);
        if (!same_character(expected, found)) {
            return std::nullopt;
        }
        from.remove_prefix(expected.size());
        path.remove_prefix(found.size());
    }
    if (!from.empty() || (!path.empty() && !is_separator(first_character(path)))) {
        return std::nullopt;
    }
    return path;
}

} // namespace

std::optional<std::string> map_path(const std::vector<PathMapEntry>& entries,
                                    std::string_view path) {
    if (path.empty()) {
        return std::nullopt;
    }
    for (const PathMapEntry& entry : entries) {
        const std::string_view from(entry.from.data(), length_without_end(entry.from));
        const std::optional<std::string_view> rest = rest_behind(from, path);
        if (!rest) {
            continue;
        }
        if (rest->empty()) {
            return entry.to;
        }
        return entry.to.substr(0, length_without_end(entry.to)).append(*rest);
    }
    return std::nullopt;
}

} // namespace pptlinks

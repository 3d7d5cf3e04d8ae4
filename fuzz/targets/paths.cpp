// Functions on paths against a plain model: a path as a list of whole characters.
#include "common_new/SafeFunc/paths.h"
#include "common_new/SafeFunc/split_path.h"
#include "fuzz/support/target.h"
#include "platform/platform.h"
#include "platform/posix/full_path.h"
#include "platform/posix/settings.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace {

using fuzz::require;
using platform::FullPath;

using Characters = std::vector<std::string>; // of one or two bytes

Characters characters(std::string_view text) {
    Characters result;
    for (std::size_t at = 0; at < text.size();) {
        const bool pair =
            IsDBCSLeadByte(static_cast<BYTE>(text[at])) != FALSE && at + 1 < text.size();
        result.emplace_back(text.substr(at, pair ? 2 : 1));
        at += pair ? 2 : 1;
    }
    return result;
}

bool separates(const std::string& character) {
    return character == "\\" || character == "/";
}

std::string joined(const Characters& text) {
    std::string result;
    for (const std::string& character : text) {
        result += character;
    }
    return result;
}

// Equal paths have equal forms: upper case, one kind of separator, no ".\" and ".." in front.
std::string model_key(const std::string& path) {
    std::string_view text = path;
    text.remove_prefix(text.starts_with(".\\") ? 2 : 0);
    text.remove_prefix(text.starts_with("..") ? 2 : 0);
    Characters key = characters(text);
    for (std::string& character : key) {
        if (separates(character)) {
            character = "\\";
        } else if (character.size() == 1 && character[0] >= 'a' && character[0] <= 'z') {
            character[0] = static_cast<char>(character[0] - 'a' + 'A');
        }
    }
    return joined(key);
}

void check_equality(const std::string& first, const std::string& second) {
    const bool equal = ppt::b_pathsEqual(first.c_str(), second.c_str());
    require(equal == (model_key(first) == model_key(second)), "paths are equal as in the model");
    require(equal == ppt::b_pathsEqual(second.c_str(), first.c_str()), "whichever comes first");
    require(ppt::b_pathsEqual(first.c_str(), ppt::ascii_lower(first).c_str()),
            "letter case of ASCII does not count");
}

void check_splitting(const std::string& path) {
    const ppt::PathParts parts = ppt::split_path(path);
    const std::string whole = std::string(parts.drive) + std::string(parts.directory) +
                              std::string(parts.file_name) + std::string(parts.extension);
    require(whole == path, "the parts are the whole path");
    const Characters name = characters(std::string(parts.file_name) + std::string(parts.extension));
    require(std::none_of(name.begin(), name.end(), separates), "a name holds no separator");
    const Characters directory = characters(parts.directory);
    require(directory.empty() || separates(directory.back()), "a directory ends in a separator");
    std::string made;
    if (path.size() < ppt::kPathCapacity) {
        require(ppt::n_makePath(&made, ppt::kPathCapacity, parts.drive, parts.directory,
                                parts.file_name, parts.extension) == 0 &&
                    made == path,
                "parts make the path again");
    }
}

// A target that lies below the master's folder is found again from there.
void check_relative(const std::string& target, const std::string& master) {
    std::string relative;
    std::string resolved;
    ppt::v_makeRelativePath(target.c_str(), master.c_str(), &relative);
    require(target.ends_with(relative), "a relative path is the end of the target");
    const std::size_t folder = target.size() - relative.size();
    const ppt::PathParts parts = ppt::split_path(master);
    const bool below = folder > 0 && folder == parts.drive.size() + parts.directory.size();
    if (below && !ppt::has_drive(relative) && !relative.starts_with('\\') &&
        !relative.starts_with('/')) {
        ppt::v_resolveLinkPath(relative.c_str(), master.c_str(), &resolved);
        require(ppt::b_pathsEqual(resolved.c_str(), target.c_str()),
                "a relative path leads back to its target");
    }
}

// The name without dots and spaces at its end.
std::string model_end(const std::string& name) {
    Characters all = characters(name);
    while (!all.empty() && (all.back() == "." || all.back() == " ")) {
        all.pop_back();
    }
    return joined(all);
}

// The names of a full path, resolved character by character.
std::vector<std::string> model_names(std::vector<std::string> names, std::string_view added,
                                     FullPath::Root root) {
    std::vector<Characters> parts(1);
    for (const std::string& character : characters(added)) {
        if (!separates(character)) {
            parts.back().push_back(character);
        } else if (!parts.back().empty()) {
            parts.emplace_back();
        }
    }
    for (std::size_t i = 0; i < parts.size(); ++i) {
        Characters& part = parts[i];
        const std::string name = joined(part);
        if (name == "..") {
            names.resize(names.size() - std::min<std::size_t>(names.size(), 1));
            continue;
        }
        const bool ends_in_one_dot =
            part.size() >= 2 && part.back() == "." && part[part.size() - 2] != ".";
        if (root != FullPath::Root::machine && i + 1 < parts.size() && ends_in_one_dot) {
            part.pop_back();
        }
        if (!part.empty() && name != ".") {
            names.push_back(joined(part));
        }
    }
    // Only a path that does not end in a separator has its end trimmed.
    while (root != FullPath::Root::machine && !parts.back().empty() && !names.empty()) {
        names.back() = model_end(names.back());
        if (!names.back().empty()) {
            break;
        }
        names.pop_back();
    }
    return names;
}

void check_full_path(const std::string& path) {
    const FullPath full = platform::full_path(path);
    const std::string text = full.text();
    for (const std::string& name : full.names) {
        const Characters all = characters(name);
        require(!name.empty() && name != "." && name != ".." &&
                    std::none_of(all.begin(), all.end(), separates),
                "a full path is made of names");
    }
    const FullPath again = platform::full_path(text);
    require(again.text() == text && again.names == full.names && again.root == full.root,
            "a full path is its own full path");
    if (path.starts_with('/')) {
        require(full.names == model_names({}, path, FullPath::Root::machine),
                "names below '/' are those of the model");
    } else if (path.size() > 2 && path[1] == ':' && (path[2] == '\\' || path[2] == '/') &&
               path[0] != '\\') {
        require(full.names == model_names({}, path.substr(2), FullPath::Root::drive),
                "names on a drive are those of the model");
    } else if (platform::is_relative(path)) {
        const FullPath here = platform::full_path(".");
        require(full.names == model_names(here.names, path, here.root),
                "names below the current directory are those of the model");
    }
    std::array<char, 64> buffer{};
    char* file = nullptr;
    const DWORD length = GetFullPathNameA(path.c_str(), buffer.size(), buffer.data(), &file);
    const bool only_blanks = path.find_first_not_of(' ') == std::string::npos;
    const std::size_t wanted = text.size() < buffer.size() ? text.size() : text.size() + 1;
    require(length == (only_blanks ? 0 : wanted),
            "the length of a full path, or the room that it needs; none for blanks");
    require(only_blanks || length >= buffer.size() || text == buffer.data(),
            "the full path itself");
}

std::string text(bytes::Cursor& input, std::size_t length) {
    const bytes::View data = input.take(std::min(length, input.remaining()));
    std::string result(data.begin(), data.end());
    std::replace(result.begin(), result.end(), '\0', '\\');
    return result;
}

} // namespace

// The input is a byte that chooses the code page, the length of the first path, and two paths.
void fuzz::test_one(bytes::View data) {
    constexpr std::array<UINT, 4> kPages = {1252, 932, 936, 65001};
    bytes::Cursor input(data);
    platform::set_ansi_code_page(kPages[input.u8() % kPages.size()]);
    const std::string first = text(input, input.u8());
    const std::string second = text(input, input.remaining());
    check_equality(first, second);
    check_splitting(first);
    check_splitting(second);
    if (!first.empty()) {
        check_full_path(first);
    }
    try {
        check_relative(second, first);
        ppt::b_linkAddressesDiffer(first.c_str(), second.c_str());
        ppt::b_hasSpecialCharacter(second);
    } catch (int) { // a status: too long
    }
}

#include "common_new/SafeFunc/paths.h"

#include "common_new/SafeFunc/split_path.h"
#include "common_new/common/conversion.h"
#include "platform/platform.h"
#include "plugin/error_params.h"
#include "plugin/status.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

namespace ppt {

namespace {

constexpr std::int32_t kPathLimit = static_cast<std::int32_t>(kPathCapacity);

void require(bool holds, std::int32_t status) {
    if (!holds) {
        throw static_cast<int>(status);
    }
}

void require_below(std::string_view text, std::int32_t limit) {
    require(b_checkLength(text, limit), status::kTextTooLong);
}

char upper(char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A')
                                                : character;
}

// Maps the single-byte characters and leaves the double-byte ones.
template <class Map>
std::string map_characters(std::string_view text, Map map) {
    std::string mapped(text);
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t size = character_size(text, at);
        if (size == 1) {
            mapped[at] = map(text[at]);
        }
        at += size;
    }
    return mapped;
}

bool begins_with_any_case(std::string_view text, std::string_view prefix) {
    return map_characters(text, upper).starts_with(map_characters(prefix, upper));
}

// Two paths are equal when their keys are.
std::string path_key(std::string_view path) {
    if (path.starts_with(".\\")) {
        path.remove_prefix(2);
    }
    if (path.starts_with("..")) {
        path.remove_prefix(2);
    }
    return map_characters(
        path, [](char character) { return is_separator(character) ? '\\' : upper(character); });
}

// The first name at or behind `at` and, in `at`, the place behind it; empty when there is none.
std::string_view next_name(std::string_view directory, std::size_t& at) {
    while (at < directory.size() && is_separator(directory[at])) {
        ++at;
    }
    const std::size_t begin = at;
    while (at < directory.size() && !is_separator(directory[at])) {
        at += character_size(directory, at);
    }
    return directory.substr(begin, at - begin);
}

// The drive, or "\\server\share" of a UNC path; empty when there is neither. The capacity of the
// directory keeps server and share far below the 257 characters that they may have together.
std::string master_root(const PathParts& master) {
    if (!master.drive.empty() || !master.directory.starts_with("\\\\")) {
        return std::string(master.drive);
    }
    std::size_t at = 0;
    const std::string_view server = next_name(master.directory, at);
    const std::string_view share = next_name(master.directory, at);
    if (share.empty()) {
        return {};
    }
    return std::string("\\\\").append(server).append("\\").append(share);
}

// The UNC name of a path on a network drive; the path itself anywhere else.
std::string universal_name(const std::string& path) {
    alignas(UNIVERSAL_NAME_INFOA) std::array<char, kPathCapacity> buffer{};
    DWORD size = static_cast<DWORD>(buffer.size());
    const DWORD error =
        WNetGetUniversalNameA(path.c_str(), UNIVERSAL_NAME_INFO_LEVEL, buffer.data(), &size);
    if (error == ERROR_NOT_ENOUGH_MEMORY) {
        throw std::bad_alloc();
    }
    if (error != NO_ERROR) {
        return path;
    }
    UNIVERSAL_NAME_INFOA info{};
    std::memcpy(&info, buffer.data(), sizeof info);
    return info.lpUniversalName;
}

} // namespace

bool b_pathsEqual(const char* first, const char* second) {
    require(first != nullptr && second != nullptr, status::kNullArgument);
    return path_key(first) == path_key(second);
}

std::string link_address_key(std::string_view address) {
    std::string joined;
    while (!address.empty()) {
        const std::string_view piece = address.substr(0, address.find('!'));
        if (piece != "'") {
            joined += piece;
        }
        address.remove_prefix(std::min(address.size(), piece.size() + 1));
    }
    return path_key(joined);
}

bool b_linkAddressesDiffer(const char* address, const char* file_name) {
    require(address != nullptr && file_name != nullptr, status::kNullArgument);
    require_below(address, kPathLimit);
    require_below(file_name, kPathLimit);
    const bool drop_drive = has_drive(file_name) && !has_drive(address);
    return link_address_key(address) != link_address_key(drop_drive ? file_name + 2 : file_name);
}

void v_makeRelativePath(const char* target, const char* master, std::string* output) {
    require(target != nullptr && master != nullptr && output != nullptr, status::kNullArgument);
    require_below(target, kPathLimit);
    require_below(master, kPathLimit);
    PathParts parts;
    require(b_splitPath(master, kSmallDirectoryCapacity, &parts), status::kSystemError);
    std::string folder;
    require(n_makePath(&folder, kPathCapacity, parts.drive, parts.directory, {}, {}) == 0,
            status::kSystemError);
    const std::string root = master_root(parts);
    if (begins_with_any_case(target, folder)) {
        *output = target + folder.size();
    } else if (begins_with_any_case(target, root)) {
        *output = target + root.size();
    } else {
        *output = target;
    }
}

void v_resolveLinkPath(const char* link_path, const char* master, std::string* output) {
    require(link_path != nullptr && master != nullptr && output != nullptr, status::kNullArgument);
    const std::string_view link = link_path;
    PathParts link_parts;
    require(b_splitPath(link, kPathCapacity, &link_parts), status::kSystemError);
    if (has_drive(link) || link.starts_with("\\\\") || link.starts_with("//")) {
        require_below(link, kPathLimit);
        *output = link;
        return;
    }
    const PathParts parts = split_path(master);
    std::string combined(parts.drive);
    if (!link.starts_with('\\')) {
        const std::string_view directory =
            whole_characters(parts.directory, kSmallDirectoryCapacity - 1);
        require(n_makePath(&combined, kPathCapacity, parts.drive, directory, {}, {}) == 0,
                status::kSystemError);
    }
    require_below(link, kPathLimit - static_cast<std::int32_t>(combined.size()));
    combined += link;
    *output = universal_name(combined);
}

std::string ascii_lower(std::string_view text) {
    return map_characters(text, [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                    : character;
    });
}

bool b_hasSpecialCharacter(std::string_view name) {
    constexpr std::string_view kSpecial = "+=@^*{}[]<>;'?|";
    for (std::size_t at = 0; at < name.size(); at += character_size(name, at)) {
        if (kSpecial.find(name[at]) == std::string_view::npos) {
            continue;
        }
        if (name[at] == '?') {
            return false;
        }
        v_setErrorParamTextAndNumber(name, static_cast<std::int32_t>(at + 1));
        return true;
    }
    return false;
}

void v_setErrorParamDriveAndNumber(std::string_view path, std::int32_t number) {
    PathParts parts;
    if (b_splitPath(path, kSmallDirectoryCapacity, &parts)) {
        v_setErrorParamTextAndNumber(parts.drive, number);
    }
}

} // namespace ppt

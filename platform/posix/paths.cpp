#include "platform/posix/paths.h"

#include "platform/posix/ansi_text.h"
#include "platform/posix/current_directory.h"
#include "platform/posix/drives.h"
#include "platform/posix/folder_names.h"
#include "platform/posix/full_path.h"
#include "platform/posix/kernel.h"
#include "platform/posix/settings.h"

#include <algorithm>
#include <optional>
#include <sys/stat.h>

namespace platform {

namespace {

bool exists(const std::string& native) {
    struct stat status {};
    return lstat(native.c_str(), &status) == 0;
}

std::string below(const std::string& folder, const std::string& name) {
    return folder + "/" + name;
}

// The names below the folder, each as it is spelled on the disk where it is there in any letter
// case; from the first missing one on, and for the last `exact_count` names, as they were given.
std::string look_up(const std::string& folder, const std::vector<std::string>& names,
                    std::size_t exact_count) {
    std::string as_given = folder;
    for (const std::string& name : names) {
        as_given = below(as_given, name);
    }
    if (exists(as_given)) {
        return as_given;
    }
    std::string native = folder;
    bool is_missing = false;
    for (std::size_t i = 0; i < names.size(); ++i) {
        std::string next = below(native, names[i]);
        if (!is_missing && !exists(next)) {
            const auto match = i + exact_count < names.size() ? find_ignoring_case(native, names[i])
                                                              : std::nullopt;
            is_missing = !match;
            next = match ? below(native, *match) : next;
        }
        native = std::move(next);
    }
    return native;
}

// Windows' rule on names of drives and shares: no control characters, none of < > " | ? *, and a
// colon only in the last name, where it would begin the name of a stream.
bool is_name_allowed(const std::string& name, bool is_last) {
    constexpr std::string_view kForbidden = "<>\"|?*";
    return std::none_of(name.begin(), name.end(), [&](char c) {
        return (c > 0 && c < ' ') || kForbidden.find(c) != std::string_view::npos ||
               (c == ':' && !is_last);
    });
}

std::string fail(DWORD error) {
    SetLastError(error);
    return {};
}

// The path of this machine, in the bytes of the file system, that the text names with its
// backslashes and all; nothing for a path of a drive or share.
std::optional<std::string> as_given(const std::string& text) {
    if (text[0] == '/') {
        return text;
    }
    const bool is_of_machine =
        is_relative(text) && current_directory().root == FullPath::Root::machine;
    return is_of_machine ? std::optional(below(native_working_directory(), text)) : std::nullopt;
}

// A path of this machine that exists just as it was given. Bytes of the file system that the code
// page cannot name stand for themselves, as utf8_to_ansi gives them; but they may also spell other
// characters of the code page, so they are only read.
std::optional<std::string> existing_as_given(const std::string& path, bool is_to_write) {
    const auto converted = ansi_to_utf8(path);
    if (converted) {
        const auto native = as_given(*converted);
        if (!native || exists(*native)) {
            return native;
        }
    }
    if (is_to_write || converted == path || utf8_to_ansi(path) != path) {
        return std::nullopt;
    }
    const auto native = as_given(path);
    return native && exists(*native) ? native : std::nullopt;
}

std::string native_path(const std::string& path, bool is_to_write) {
    if (path.empty()) {
        return fail(ERROR_PATH_NOT_FOUND);
    }
    if (auto native = existing_as_given(path, is_to_write)) {
        return *native;
    }
    const FullPath full = full_path(path);
    const bool is_of_machine = full.root == FullPath::Root::machine;
    std::vector<std::string> names;
    for (const std::string& ansi : full.names) {
        const auto name = ansi_to_utf8(ansi);
        const bool is_last = names.size() + 1 == full.names.size();
        if (!name || (!is_of_machine && !is_name_allowed(*name, is_last))) {
            return fail(ERROR_INVALID_NAME);
        }
        names.push_back(*name);
    }
    std::optional<std::string> folder = std::string();
    if (!is_of_machine) {
        const auto head = ansi_to_utf8(full.head);
        folder = head ? DriveTable::instance().folder_of(*head) : std::nullopt;
    }
    if (!folder) {
        return fail(ERROR_PATH_NOT_FOUND);
    }
    std::string native = look_up(*folder, names, is_to_write && is_of_machine ? 1 : 0);
    if (native.empty() || full.ends_with_separator) {
        native.push_back('/');
    }
    return native;
}

} // namespace

std::string to_native_path(const std::string& path) {
    return native_path(path, false);
}

std::string native_path_to_write(const std::string& path) {
    return native_path(path, true);
}

} // namespace platform

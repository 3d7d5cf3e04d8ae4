#include "platform/posix/full_path.h"

#include "platform/posix/buffers.h"
#include "platform/posix/current_directory.h"
#include "platform/posix/kernel_guard.h"

#include <cstring>

namespace platform {

namespace {

bool is_separator(char c) {
    return c == '\\' || c == '/';
}

bool has_drive(std::string_view path) {
    return path.size() >= 2 && path[1] == ':' && !is_separator(path[0]);
}

bool is_share(std::string_view path) {
    return path.size() >= 2 && path[0] == '\\' && is_separator(path[1]);
}

struct Split {
    std::vector<std::string> names; // without the empty ones
    bool ends_with_separator = false;
};

Split split(std::string_view path) {
    Split result;
    std::string name;
    for (std::size_t i = 0; i < path.size(); ++i) {
        result.ends_with_separator = is_separator(path[i]);
        if (!result.ends_with_separator) {
            name.push_back(path[i]);
            if (IsDBCSLeadByte(static_cast<BYTE>(path[i])) != FALSE && i + 1 < path.size()) {
                name.push_back(path[++i]);
            }
        } else if (!name.empty()) {
            result.names.push_back(std::move(name));
            name.clear();
        }
    }
    if (!name.empty()) {
        result.names.push_back(std::move(name));
    }
    return result;
}

// A single dot that ends a name does not count on a drive or share; neither do any dots and spaces
// that end the whole path.
void trim(std::string& name, bool ends_path) {
    if (ends_path) {
        name.erase(name.find_last_not_of(". ") + 1);
    } else if (name.size() >= 2 && name.back() == '.' && name[name.size() - 2] != '.') {
        name.pop_back();
    }
}

void append(FullPath& path, Split added) {
    for (std::size_t i = 0; i < added.names.size(); ++i) {
        std::string& name = added.names[i];
        if (name == ".") {
            continue;
        }
        if (name == "..") {
            if (!path.names.empty()) {
                path.names.pop_back();
            }
            continue;
        }
        if (path.root != FullPath::Root::machine) {
            trim(name, i + 1 == added.names.size() && !added.ends_with_separator);
        }
        if (!name.empty()) {
            path.names.push_back(std::move(name));
        }
    }
    path.ends_with_separator = added.ends_with_separator;
}

FullPath share_root(std::vector<std::string>& names) {
    FullPath path;
    path.root = FullPath::Root::share;
    path.head = "\\";
    const std::size_t count = names.size() < 2 ? names.size() : 2;
    for (std::size_t i = 0; i < count; ++i) {
        path.head += "\\" + names[i];
    }
    names.erase(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(count));
    return path;
}

} // namespace

std::string FullPath::text() const {
    const char separator = root == Root::machine ? '/' : '\\';
    std::string text = head;
    for (const std::string& name : names) {
        text += separator + name;
    }
    const bool is_bare_root = names.empty() && root != Root::share;
    if (is_bare_root || ends_with_separator) {
        text.push_back(separator);
    }
    return text;
}

FullPath full_path(std::string_view path) {
    FullPath result;
    Split added;
    if (!path.empty() && path[0] == '/') {
        added = split(path);
    } else if (is_share(path)) {
        added = split(path);
        result = share_root(added.names);
    } else if (has_drive(path)) {
        added = split(path.substr(2));
        result = directory_of_drive(path[0]);
        if (path.size() > 2 && is_separator(path[2])) {
            result.names.clear();
        }
    } else {
        added = split(path);
        result = current_directory();
        if (!is_relative(path)) {
            result.names.clear();
        }
    }
    append(result, std::move(added));
    return result;
}

bool is_relative(std::string_view path) {
    return !path.empty() && !is_separator(path[0]) && !has_drive(path);
}

} // namespace platform

DWORD GetFullPathNameA(const char* path, DWORD size, char* buffer, char** file_part) {
    if (path == nullptr || *path == '\0') {
        SetLastError(path == nullptr ? ERROR_INVALID_PARAMETER : ERROR_INVALID_NAME);
        return 0;
    }
    return platform::guarded_by_last_error(DWORD{0}, [&] {
        const platform::FullPath full = platform::full_path(path);
        const std::string text = full.text();
        const DWORD length = platform::give_path(text, size, buffer);
        if (file_part != nullptr && length == text.size()) {
            const bool is_folder = full.names.empty() || full.ends_with_separator;
            *file_part = is_folder ? nullptr : buffer + text.size() - full.names.back().size();
        }
        return length;
    });
}

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

// 2 for a lead byte with the byte behind it, else 1.
std::size_t character_size(std::string_view text, std::size_t at) {
    const bool is_lead = IsDBCSLeadByte(static_cast<BYTE>(text[at])) != FALSE;
    return is_lead && at + 1 < text.size() ? 2 : 1;
}

struct Split {
    std::vector<std::string> names; // without the empty ones
    bool ends_with_separator = false;
};

Split split(std::string_view path) {
    Split result;
    std::string name;
    for (std::size_t at = 0; at < path.size(); at += character_size(path, at)) {
        result.ends_with_separator = is_separator(path[at]);
        if (!result.ends_with_separator) {
            name += path.substr(at, character_size(path, at));
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

// How many characters at the end of a name are among these; none of them is half of another one.
std::size_t count_at_end(std::string_view name, std::string_view characters) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < name.size(); at += character_size(name, at)) {
        const bool counts =
            character_size(name, at) == 1 && characters.find(name[at]) != std::string_view::npos;
        count = counts ? count + 1 : 0;
    }
    return count;
}

// A single dot that ends a name does not count on a drive or share.
void trim_name(std::string& name) {
    if (name.size() >= 2 && count_at_end(name, ".") == 1) {
        name.pop_back();
    }
}

// Neither do any dots and spaces that end the whole path, whichever name they are left on.
void trim_end(std::vector<std::string>& names) {
    while (!names.empty()) {
        std::string& last = names.back();
        last.resize(last.size() - count_at_end(last, ". "));
        if (!last.empty()) {
            return;
        }
        names.pop_back();
    }
}

void append(FullPath& path, Split added) {
    const bool trims = path.root != FullPath::Root::machine;
    for (std::string& name : added.names) {
        const bool ends_path = &name == &added.names.back() && !added.ends_with_separator;
        if (name == ".") {
            continue;
        }
        if (name == "..") {
            if (!path.names.empty()) {
                path.names.pop_back();
            }
            continue;
        }
        if (trims && !ends_path) {
            trim_name(name);
        }
        path.names.push_back(std::move(name));
    }
    path.ends_with_separator = added.ends_with_separator;
    if (trims && !path.ends_with_separator) {
        trim_end(path.names);
    }
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
    const bool names_something = path != nullptr && path[std::strspn(path, " ")] != '\0';
    if (!names_something) {
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

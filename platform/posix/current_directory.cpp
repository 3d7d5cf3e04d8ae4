#include "platform/posix/current_directory.h"

#include "platform/posix/ansi_text.h"
#include "platform/posix/buffers.h"
#include "platform/posix/errno_table.h"
#include "platform/posix/kernel_guard.h"
#include "platform/posix/settings.h"

#include <cerrno>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <unistd.h>

namespace platform {

namespace {

struct Directories {
    std::optional<FullPath> current; // nothing until the first SetCurrentDirectoryA
    std::map<char, FullPath> of_drive;
};

Directories& directories() {
    static Directories state;
    return state;
}

char upper(char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

bool is_on_drive(const FullPath& path, char letter) {
    return path.root == FullPath::Root::drive && upper(path.head[0]) == upper(letter);
}

} // namespace

std::string native_working_directory() {
    const std::unique_ptr<char, decltype(&std::free)> path(getcwd(nullptr, 0), &std::free);
    return path == nullptr || *path != '/' ? "/" : path.get();
}

FullPath current_directory() {
    if (directories().current) {
        return *directories().current;
    }
    return full_path(utf8_to_ansi(native_working_directory()));
}

FullPath directory_of_drive(char letter) {
    const Directories& known = directories();
    const auto remembered = known.of_drive.find(upper(letter));
    FullPath path;
    if (known.current && is_on_drive(*known.current, letter)) {
        path = *known.current;
    } else if (remembered != known.of_drive.end()) {
        path = remembered->second;
    }
    path.root = FullPath::Root::drive;
    path.head = {letter, ':'};
    return path;
}

namespace {

BOOL change_directory(const char* path) {
    const std::string native = to_native_path(path);
    if (native.empty()) {
        return FALSE;
    }
    FullPath full = full_path(path);
    full.ends_with_separator = false;
    if (chdir(native.c_str()) != 0) {
        const int number = errno;
        SetLastError(number == ENOTDIR ? ERROR_DIRECTORY : path_error_of_errno(number, native));
        return FALSE;
    }
    directories().current = std::move(full);
    return TRUE;
}

BOOL remember_directory(std::string_view name, const char* value) {
    const bool names_a_drive = name.size() == 3 && name[0] == '=' && name[2] == ':';
    FullPath full = full_path(value);
    full.ends_with_separator = false;
    if (!names_a_drive || !is_on_drive(full, name[1])) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    directories().of_drive[upper(name[1])] = std::move(full);
    return TRUE;
}

} // namespace

} // namespace platform

DWORD GetCurrentDirectoryA(DWORD size, char* buffer) {
    return platform::guarded_by_last_error(DWORD{0}, [&] {
        return platform::give_path(platform::current_directory().text(), size, buffer);
    });
}

BOOL SetCurrentDirectoryA(const char* path) {
    if (path == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return platform::guarded_by_last_error(FALSE,
                                           [path] { return platform::change_directory(path); });
}

BOOL SetEnvironmentVariableA(const char* name, const char* value) {
    if (name == nullptr || value == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return platform::guarded_by_last_error(
        FALSE, [=] { return platform::remember_directory(name, value); });
}

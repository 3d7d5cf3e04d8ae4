#include "platform/posix/current_directory.h"

#include "platform/posix/ansi_text.h"
#include "platform/posix/buffers.h"
#include "platform/posix/errno_table.h"
#include "platform/posix/kernel.h"
#include "platform/posix/settings.h"

#include <cerrno>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
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
    const auto remembered = directories().of_drive.find(upper(letter));
    FullPath path;
    if (remembered != directories().of_drive.end()) {
        path = remembered->second;
    }
    path.root = FullPath::Root::drive;
    path.head = {letter, ':'};
    return path;
}

} // namespace platform

DWORD GetCurrentDirectoryA(DWORD size, char* buffer) {
    return platform::give_path(platform::current_directory().text(), size, buffer);
}

BOOL SetCurrentDirectoryA(const char* path) {
    if (path == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const std::string native = platform::to_native_path(path);
    if (native.empty()) {
        return FALSE;
    }
    platform::FullPath full = platform::full_path(path);
    if (chdir(native.c_str()) != 0) {
        const int number = errno;
        SetLastError(number == ENOTDIR ? ERROR_DIRECTORY
                                       : platform::path_error_of_errno(number, native));
        return FALSE;
    }
    full.ends_with_separator = false;
    if (full.root == platform::FullPath::Root::drive) {
        platform::directories().of_drive[platform::upper(full.head[0])] = full;
    }
    platform::directories().current = std::move(full);
    return TRUE;
}

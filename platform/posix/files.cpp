// Files by their names: attributes, and the text log.
#include "platform/posix/errno_table.h"
#include "platform/posix/kernel_guard.h"
#include "platform/posix/paths.h"
#include "platform/posix/settings.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

DWORD GetFileAttributesA(const char* path) {
    if (path == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_FILE_ATTRIBUTES;
    }
    return platform::guarded_by_last_error(INVALID_FILE_ATTRIBUTES, [path] {
        const std::string native = platform::to_native_path(path);
        if (native.empty()) {
            return INVALID_FILE_ATTRIBUTES;
        }
        struct stat status {};
        if (stat(native.c_str(), &status) != 0) {
            SetLastError(platform::path_error_of_errno(errno, native));
            return INVALID_FILE_ATTRIBUTES;
        }
        if (S_ISDIR(status.st_mode)) {
            return FILE_ATTRIBUTE_DIRECTORY;
        }
        const bool is_read_only = (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
        return is_read_only ? FILE_ATTRIBUTE_READONLY : FILE_ATTRIBUTE_NORMAL;
    });
}

std::FILE* open_text_log(const char* path) {
    constexpr mode_t kPermissions = 0666; // without those that the user masks out
    const std::string native = platform::native_path_to_write(path);
    const int file =
        native.empty() ? -1
                       : open(native.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC,
                              kPermissions);
    std::FILE* const log = file < 0 ? nullptr : fdopen(file, "wb");
    if (file >= 0 && log == nullptr) {
        close(file);
    }
    return log;
}

// Files by their names: attributes, and the text log.
#include "platform/posix/errno_table.h"
#include "platform/posix/kernel_guard.h"
#include "platform/posix/paths.h"
#include "platform/posix/settings.h"

#include <cerrno>
#include <sys/stat.h>

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
    const std::string native = platform::native_path_to_write(path);
    return native.empty() ? nullptr : std::fopen(native.c_str(), "wbe");
}

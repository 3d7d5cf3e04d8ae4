// CopyFileA. The source is open and locked before the destination is touched, and the destination
// is locked before it is emptied, so a copy that cannot be made leaves both as they were. A copy
// that fails half way leaves no destination.
#include "platform/posix/errno_table.h"
#include "platform/posix/file_handle.h"
#include "platform/posix/kernel_guard.h"
#include "platform/posix/paths.h"
#include "platform/posix/settings.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <linux/fs.h>
#include <memory>
#include <new>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 20;
constexpr mode_t kWriteBits = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr mode_t kModeBits = S_IRWXU | S_IRWXG | S_IRWXO;

struct OpenFile {
    FileHandle handle;
    struct stat status {};
};

// The functions below return ERROR_SUCCESS or what went wrong.

DWORD open_source(const std::string& path, OpenFile& source) {
    // Non-blocking, since opening a pipe would wait for its other end.
    source.handle = FileHandle(path, O_RDONLY | O_NONBLOCK);
    if (!source.handle.is_open()) {
        return path_error_of_errno(errno, path);
    }
    if (fstat(source.handle.descriptor(), &source.status) != 0) {
        return error_of_errno(errno, Transfer::reading);
    }
    if (!S_ISREG(source.status.st_mode)) {
        return ERROR_ACCESS_DENIED;
    }
    return source.handle.lock(FileHandle::Lock::shared) ? ERROR_SUCCESS : ERROR_SHARING_VIOLATION;
}

DWORD open_new(const std::string& path, const OpenFile& source, OpenFile& destination) {
    destination.handle = FileHandle(path, O_WRONLY | O_CREAT | O_EXCL,
                                    (source.status.st_mode & kModeBits) | S_IWUSR);
    if (!destination.handle.is_open()) {
        return path_error_of_errno(errno, path);
    }
    if (!destination.handle.lock(FileHandle::Lock::exclusive)) {
        unlink(path.c_str()); // somebody looks at it already, empty as it is
        return ERROR_SHARING_VIOLATION;
    }
    return ERROR_SUCCESS;
}

DWORD open_existing(const std::string& path, const OpenFile& source, OpenFile& destination) {
    destination.handle = FileHandle(path, O_WRONLY | O_NONBLOCK);
    if (!destination.handle.is_open()) {
        return path_error_of_errno(errno, path);
    }
    if (fstat(destination.handle.descriptor(), &destination.status) != 0) {
        return error_of_errno(errno, Transfer::writing);
    }
    // The read-only attribute binds every user, root too.
    if (!S_ISREG(destination.status.st_mode) || (destination.status.st_mode & kWriteBits) == 0) {
        return ERROR_ACCESS_DENIED;
    }
    if (destination.status.st_dev == source.status.st_dev &&
        destination.status.st_ino == source.status.st_ino) {
        return ERROR_SHARING_VIOLATION;
    }
    if (!destination.handle.lock(FileHandle::Lock::exclusive)) {
        return ERROR_SHARING_VIOLATION;
    }
    return ftruncate(destination.handle.descriptor(), 0) == 0
               ? ERROR_SUCCESS
               : error_of_errno(errno, Transfer::writing);
}

DWORD open_destination(const std::string& path, bool fail_if_exists, const OpenFile& source,
                       OpenFile& destination) {
    const DWORD error = open_new(path, source, destination);
    return error == ERROR_FILE_EXISTS && !fail_if_exists ? open_existing(path, source, destination)
                                                         : error;
}

// Copies inside the kernel as far as that goes; what is missing is left to copy_by_buffer.
DWORD copy_in_kernel(int source, int destination) {
    ssize_t count = 0;
    do {
        constexpr std::size_t kAll = std::size_t{1} << 30;
        count = copy_file_range(source, nullptr, destination, nullptr, kAll, 0);
    } while (count > 0 || (count < 0 && errno == EINTR));
    const bool is_disk_full = count < 0 && (errno == ENOSPC || errno == EDQUOT);
    return is_disk_full ? ERROR_DISK_FULL : ERROR_SUCCESS;
}

DWORD write_all(int destination, const std::uint8_t* data, std::size_t size) {
    while (size > 0) {
        const ssize_t count = write(destination, data, size);
        if (count < 0 && errno != EINTR) {
            return error_of_errno(errno, Transfer::writing);
        }
        const std::size_t written = count < 0 ? 0 : static_cast<std::size_t>(count);
        data += written;
        size -= written;
    }
    return ERROR_SUCCESS;
}

DWORD copy_by_buffer(int source, int destination) {
    const std::unique_ptr<std::uint8_t[]> buffer(new (std::nothrow) std::uint8_t[kBufferSize]);
    if (buffer == nullptr) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    for (;;) {
        const ssize_t count = read(source, buffer.get(), kBufferSize);
        if (count == 0) {
            return ERROR_SUCCESS;
        }
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return error_of_errno(errno, Transfer::reading);
        }
        const DWORD error = write_all(destination, buffer.get(), static_cast<std::size_t>(count));
        if (error != ERROR_SUCCESS) {
            return error;
        }
    }
}

DWORD copy_bytes(int source, int destination) {
    if (ioctl(destination, FICLONE, source) == 0) {
        return ERROR_SUCCESS;
    }
    const DWORD error = copy_in_kernel(source, destination);
    return error == ERROR_SUCCESS ? copy_by_buffer(source, destination) : error;
}

// The copy gets the time of the source's last change. It is writable by its owner even where the
// source is not: permissions say who may write that file, not that its copies are to be kept. A
// file system that keeps no times is no failure.
void copy_time(const OpenFile& source, const OpenFile& destination) {
    const std::array<timespec, 2> times{timespec{0, UTIME_OMIT}, source.status.st_mtim};
    static_cast<void>(futimens(destination.handle.descriptor(), times.data()));
}

DWORD copy_file(const std::string& from, const std::string& to, bool fail_if_exists) {
    OpenFile source;
    OpenFile destination;
    DWORD error = open_source(from, source);
    if (error == ERROR_SUCCESS) {
        error = open_destination(to, fail_if_exists, source, destination);
    }
    if (error != ERROR_SUCCESS) {
        return error;
    }
    error = copy_bytes(source.handle.descriptor(), destination.handle.descriptor());
    if (error == ERROR_SUCCESS) {
        copy_time(source, destination);
        if (!destination.handle.close()) {
            error = error_of_errno(errno, Transfer::writing);
        }
    }
    if (error != ERROR_SUCCESS) {
        unlink(to.c_str());
    }
    return error;
}

} // namespace

} // namespace platform

BOOL CopyFileA(const char* source, const char* destination, BOOL fail_if_exists) {
    if (source == nullptr || destination == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return platform::guarded_by_last_error(FALSE, [&] {
        const std::string from = platform::to_native_path(source);
        const std::string to = from.empty() ? from : platform::native_path_to_write(destination);
        if (to.empty()) {
            return FALSE;
        }
        const DWORD error = platform::copy_file(from, to, fail_if_exists != FALSE);
        if (error != ERROR_SUCCESS) {
            SetLastError(error);
            return FALSE;
        }
        return TRUE;
    });
}

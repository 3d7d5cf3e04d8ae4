#include "platform/posix/errno_table.h"

#include <cerrno>
#include <sys/stat.h>

namespace platform {

namespace {

struct Entry {
    int number;
    DWORD error;
};

constexpr Entry kErrors[] = {
    {EPERM, ERROR_ACCESS_DENIED},
    {ENOENT, ERROR_FILE_NOT_FOUND},
    {ENXIO, ERROR_NOT_READY},
    {EBADF, ERROR_INVALID_HANDLE},
    {EAGAIN, ERROR_SHARING_VIOLATION},
    {ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
    {EACCES, ERROR_ACCESS_DENIED},
    {EBUSY, ERROR_SHARING_VIOLATION},
    {EEXIST, ERROR_FILE_EXISTS},
    {ENODEV, ERROR_NOT_READY},
    {ENOTDIR, ERROR_PATH_NOT_FOUND},
    {EISDIR, ERROR_ACCESS_DENIED},
    {EINVAL, ERROR_INVALID_PARAMETER},
    {ENFILE, ERROR_TOO_MANY_OPEN_FILES},
    {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
    {ETXTBSY, ERROR_SHARING_VIOLATION},
    {EFBIG, ERROR_DISK_FULL},
    {ENOSPC, ERROR_DISK_FULL},
    {EROFS, ERROR_WRITE_PROTECT},
    {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
    {ELOOP, ERROR_CANT_RESOLVE_FILENAME},
    {EDQUOT, ERROR_DISK_FULL},
    {ENOTCONN, ERROR_BAD_NETPATH},
    {EHOSTDOWN, ERROR_BAD_NETPATH},
    {EHOSTUNREACH, ERROR_BAD_NETPATH},
    {ENETUNREACH, ERROR_BAD_NETPATH},
    {ETIMEDOUT, ERROR_BAD_NETPATH},
};

DWORD error_of_io_fault(Transfer transfer) {
    switch (transfer) {
    case Transfer::reading:
        return ERROR_READ_FAULT;
    case Transfer::writing:
        return ERROR_WRITE_FAULT;
    case Transfer::none:
        break;
    }
    return ERROR_GEN_FAILURE;
}

bool folder_exists(const std::string& native_path) {
    const std::size_t end = native_path.find_last_not_of('/');
    const std::size_t separator =
        end == std::string::npos ? std::string::npos : native_path.rfind('/', end);
    if (separator == std::string::npos) {
        return true;
    }
    struct stat status {};
    return stat(native_path.substr(0, separator + 1).c_str(), &status) == 0 &&
           S_ISDIR(status.st_mode);
}

} // namespace

DWORD error_of_errno(int number, Transfer transfer) {
    if (number == EIO) {
        return error_of_io_fault(transfer);
    }
    for (const Entry& entry : kErrors) {
        if (entry.number == number) {
            return entry.error;
        }
    }
    return ERROR_GEN_FAILURE;
}

DWORD path_error_of_errno(int number, const std::string& native_path) {
    if (number == ENOENT && !folder_exists(native_path)) {
        return ERROR_PATH_NOT_FOUND;
    }
    return error_of_errno(number);
}

} // namespace platform

#include "platform/posix/file_handle.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace platform {

FileHandle::FileHandle(const std::string& native_path, int flags, unsigned mode)
    : descriptor_(open(native_path.c_str(), flags | O_CLOEXEC, mode)) {}

// Locks of the open file description: the classic kind neither conflicts inside one process nor
// survives the closing of another descriptor of the same file.
bool FileHandle::lock(Lock kind) const {
    struct flock range {};
    range.l_type = static_cast<short>(kind == Lock::shared ? F_RDLCK : F_WRLCK);
    range.l_whence = SEEK_SET;
    return fcntl(descriptor_, F_OFD_SETLK, &range) == 0 || (errno != EAGAIN && errno != EACCES);
}

bool FileHandle::close() {
    const int descriptor = std::exchange(descriptor_, -1);
    return descriptor < 0 || ::close(descriptor) == 0;
}

} // namespace platform

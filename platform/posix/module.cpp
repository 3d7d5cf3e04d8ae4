// The executable's own path.
#include "platform/posix/ansi_text.h"
#include "platform/posix/errno_table.h"
#include "platform/posix/kernel_guard.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <string>
#include <unistd.h>

namespace {

DWORD give_own_path(char* buffer, DWORD size) {
    std::string native(PATH_MAX, '\0');
    const ssize_t length = readlink("/proc/self/exe", native.data(), native.size());
    if (length < 0) {
        SetLastError(platform::error_of_errno(errno));
        return 0;
    }
    native.resize(static_cast<std::size_t>(length));
    const std::string path = platform::utf8_to_ansi(native);
    // A path that is too long is cut, and the size of the buffer is the answer.
    const std::size_t count = std::min<std::size_t>(path.size(), size - 1);
    std::memcpy(buffer, path.data(), count);
    buffer[count] = '\0';
    if (count == path.size()) {
        return static_cast<DWORD>(count);
    }
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return size;
}

} // namespace

DWORD GetModuleFileNameA(void* module, char* buffer, DWORD size) {
    if (module != nullptr || buffer == nullptr || size == 0) {
        SetLastError(module != nullptr ? ERROR_INVALID_HANDLE : ERROR_INVALID_PARAMETER);
        return 0;
    }
    return platform::guarded_by_last_error(DWORD{0}, [&] { return give_own_path(buffer, size); });
}

// The user that the process runs as.
#include "platform/posix/ansi_text.h"
#include "platform/posix/kernel_guard.h"

#include <cerrno>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace {

// Empty when neither the user data base nor the environment knows the user.
std::string user_name() {
    std::vector<char> buffer(1024);
    passwd entry{};
    passwd* found = nullptr;
    while (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) == ERANGE &&
           buffer.size() < (std::size_t{1} << 20)) {
        buffer.resize(buffer.size() * 2);
    }
    if (found != nullptr) {
        return found->pw_name;
    }
    const char* user = std::getenv("USER");
    return user == nullptr ? "" : user;
}

} // namespace

BOOL GetUserNameA(char* buffer, DWORD* size) {
    if (size == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return platform::guarded_by_last_error(FALSE, [&] {
        const std::string name = platform::utf8_to_ansi(user_name());
        if (name.empty()) {
            SetLastError(ERROR_NONE_MAPPED);
            return FALSE;
        }
        const DWORD available = *size;
        *size = static_cast<DWORD>(name.size() + 1);
        if (buffer == nullptr || available < *size) {
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return FALSE;
        }
        std::memcpy(buffer, name.c_str(), *size);
        return TRUE;
    });
}

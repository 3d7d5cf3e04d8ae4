// Names on the network, from the table of drives and shares.
#include "platform/posix/ansi_text.h"
#include "platform/posix/drives.h"
#include "platform/posix/kernel_guard.h"

namespace {

bool is_path_on_drive(std::string_view path) {
    const char letter = path.empty() ? '\0' : path[0];
    const bool is_letter = (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z');
    return is_letter && path.size() >= 2 && path[1] == ':' &&
           (path.size() == 2 || path[2] == '\\' || path[2] == '/');
}

DWORD give_name(std::string_view path, void* buffer, DWORD* size) {
    const auto share = platform::DriveTable::instance().share_of(path.substr(0, 2));
    if (!share) {
        return ERROR_NOT_CONNECTED;
    }
    const std::string name = platform::utf8_to_ansi(*share) + std::string(path.substr(2));
    const std::size_t needed = sizeof(UNIVERSAL_NAME_INFOA) + name.size() + 1;
    if (*size < needed) {
        *size = static_cast<DWORD>(needed);
        return ERROR_MORE_DATA;
    }
    // The structure stands at the start of the buffer and points at the text behind it. The buffer
    // need not be aligned.
    char* const text = static_cast<char*>(buffer) + sizeof(UNIVERSAL_NAME_INFOA);
    std::memcpy(text, name.c_str(), name.size() + 1);
    const UNIVERSAL_NAME_INFOA info{text};
    std::memcpy(buffer, &info, sizeof info);
    return NO_ERROR;
}

} // namespace

DWORD WNetGetUniversalNameA(const char* local_path, DWORD level, void* buffer, DWORD* size) {
    if (local_path == nullptr || size == nullptr || (buffer == nullptr && *size != 0)) {
        return ERROR_INVALID_PARAMETER;
    }
    if (level != UNIVERSAL_NAME_INFO_LEVEL) {
        return ERROR_INVALID_LEVEL;
    }
    const std::string_view path(local_path);
    if (!is_path_on_drive(path)) {
        return ERROR_BAD_DEVICE;
    }
    return platform::guarded_by_last_error(ERROR_NOT_ENOUGH_MEMORY,
                                           [&] { return give_name(path, buffer, size); });
}

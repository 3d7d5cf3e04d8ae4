// The buffer rule of the calls that hand out a path: the length without the terminator when the
// text fits, else the size that it needs with the terminator, and nothing is written.
#pragma once

#include "platform/posix/types.h"

#include <string_view>

namespace platform {

inline DWORD give_path(std::string_view text, DWORD size, char* buffer) {
    if (buffer == nullptr || text.size() >= size) {
        return static_cast<DWORD>(text.size() + 1);
    }
    std::memcpy(buffer, text.data(), text.size());
    buffer[text.size()] = '\0';
    return static_cast<DWORD>(text.size());
}

} // namespace platform

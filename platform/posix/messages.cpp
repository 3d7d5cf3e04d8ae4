// FormatMessageA over the table of messages.
#include "platform/posix/messages.h"

#include "platform/posix/kernel.h"

#include <string>

namespace {

constexpr DWORD kNeutral = 0;
constexpr DWORD kEnglishUnitedStates = 1033;

DWORD fail(DWORD error) {
    SetLastError(error);
    return 0;
}

} // namespace

DWORD FormatMessageA(DWORD flags, const void*, DWORD message, DWORD language, char* buffer,
                     DWORD size, void*) {
    const DWORD supported = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    if ((flags & FORMAT_MESSAGE_FROM_SYSTEM) == 0 || (flags & ~supported) != 0 ||
        buffer == nullptr) {
        return fail(ERROR_INVALID_PARAMETER);
    }
    if (language != kNeutral && language != kEnglishUnitedStates) {
        return fail(ERROR_RESOURCE_LANG_NOT_FOUND);
    }
    const char* const text = platform::message_text(message);
    if (text == nullptr) {
        return fail(ERROR_MR_MID_NOT_FOUND);
    }
    const std::string line = std::string(text) + "\r\n";
    if (line.size() >= size) {
        return fail(ERROR_INSUFFICIENT_BUFFER);
    }
    std::memcpy(buffer, line.c_str(), line.size() + 1);
    return static_cast<DWORD>(line.size());
}

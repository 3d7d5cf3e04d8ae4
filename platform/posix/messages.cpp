// FormatMessageA over the table of messages.
#include "platform/posix/messages.h"

#include "platform/posix/kernel.h"

#include <algorithm>
#include <cstring>
#include <string_view>

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
    // Without memory of its own: it is also asked when there is none.
    constexpr std::string_view kLineEnd("\r\n");
    const std::size_t length = std::strlen(text) + kLineEnd.size();
    if (length >= size) {
        return fail(ERROR_INSUFFICIENT_BUFFER);
    }
    char* const end = std::copy_n(text, std::strlen(text), buffer);
    *std::copy(kLineEnd.begin(), kLineEnd.end(), end) = '\0';
    return static_cast<DWORD>(length);
}

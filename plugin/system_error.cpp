#include "plugin/system_error.h"

#include "platform/platform.h"
#include "plugin/error_names.h"
#include "plugin/error_params.h"
#include "plugin/status.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>

namespace ppt {

namespace {

struct StatusOfError {
    DWORD error;
    std::int32_t status;
};

constexpr StatusOfError kStatusOfError[] = {
    {2, status::kFileNotFound},       // ERROR_FILE_NOT_FOUND
    {3, status::kPathNotFound},       // ERROR_PATH_NOT_FOUND
    {4, status::kTooManyOpenFiles},   // ERROR_TOO_MANY_OPEN_FILES
    {5, status::kAccessDenied},       // ERROR_ACCESS_DENIED
    {8, status::kSystemOutOfMemory},  // ERROR_NOT_ENOUGH_MEMORY
    {14, status::kSystemOutOfMemory}, // ERROR_OUTOFMEMORY
    {19, status::kWriteProtected},    // ERROR_WRITE_PROTECT
    {21, status::kDeviceNotReady},    // ERROR_NOT_READY
    {29, status::kWriteFault},        // ERROR_WRITE_FAULT
    {30, status::kReadFault},         // ERROR_READ_FAULT
    {32, status::kFileInUse},         // ERROR_SHARING_VIOLATION
    {33, status::kFileInUse},         // ERROR_LOCK_VIOLATION
    {38, status::kEndOfFile},         // ERROR_HANDLE_EOF
    {39, status::kDiskFull},          // ERROR_HANDLE_DISK_FULL
    {87, status::kNullArgument},      // ERROR_INVALID_PARAMETER
    {110, status::kOpenFailed},       // ERROR_OPEN_FAILED
    {112, status::kDiskFull},         // ERROR_DISK_FULL
    {122, status::kTextTooLong},      // ERROR_INSUFFICIENT_BUFFER
    {123, status::kInvalidName},      // ERROR_INVALID_NAME
    {161, status::kBadPathName},      // ERROR_BAD_PATHNAME
    {1004, status::kNullArgument},    // ERROR_INVALID_FLAGS
    {1113, status::kNoUnicodeForm},   // ERROR_NO_UNICODE_TRANSLATION
    {0x80030070, status::kDiskFull},  // STG_E_MEDIUMFULL as a last error
};

constexpr DWORD kWin32AsComResult = 0x80070000;
constexpr DWORD kEnglishUnitedStates = 1033;
constexpr std::size_t kLongestMessage = 400;

using Message = std::array<char, kLongestMessage + 1>;

// Zero-terminated; empty when the system has no text for the code.
const char* system_message(DWORD code, Message& buffer) {
    const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                        nullptr, code, kEnglishUnitedStates, buffer.data(),
                                        static_cast<DWORD>(buffer.size()), nullptr);
    return length == 0 ? "" : buffer.data();
}

// The message of the code, else its symbolic name; nothing for a code that has an empty name, as
// the codes that applications define for themselves do.
const char* describe(DWORD code, bool is_com_result, Message& buffer) {
    const char* const name = error_name(is_com_result ? code : code | kWin32AsComResult);
    if (*name == 0) {
        return "";
    }
    const char* const message = system_message(code, buffer);
    return *message != 0 ? message : name;
}

} // namespace

void v_setErrorParamSystem(std::uint32_t code, bool is_com_result) {
    Message buffer{};
    std::array<char, 16> flag_and_code{};
    std::snprintf(flag_and_code.data(), flag_and_code.size(), "%i%c%x", is_com_result ? 1 : 0,
                  static_cast<char>(kErrorParamSeparator), code);
    v_setErrorParamTwoTexts(flag_and_code.data(), describe(code, is_com_result, buffer));
}

std::int32_t n_translateSystemError() {
    const DWORD error = GetLastError();
    if (error == NO_ERROR) {
        return status::kSuccess;
    }
    v_setErrorParamSystem(error, false);
    const auto known =
        std::find_if(std::begin(kStatusOfError), std::end(kStatusOfError),
                     [error](const StatusOfError& row) { return row.error == error; });
    return known == std::end(kStatusOfError) ? status::kSystemError : known->status;
}

} // namespace ppt

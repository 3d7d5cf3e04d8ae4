#include "common_new/common/files.h"

#include "common_new/SafeFunc/paths.h"
#include "common_new/common/conversion.h"
#include "platform/platform.h"
#include "plugin/error_params.h"
#include "plugin/status.h"
#include "plugin/system_error.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace ppt {

namespace {

enum class ErrorClass { not_found, access, invalid, other };

struct ErrorRange {
    DWORD first;
    DWORD last;
    ErrorClass error_class;
};

// The first range that holds an error decides; an error in none is invalid.
constexpr ErrorRange kErrorClasses[] = {
    {2, 3, ErrorClass::not_found},     {15, 15, ErrorClass::not_found},
    {18, 18, ErrorClass::not_found},   {53, 53, ErrorClass::not_found},
    {67, 67, ErrorClass::not_found},   {161, 161, ErrorClass::not_found},
    {206, 206, ErrorClass::not_found}, {5, 5, ErrorClass::access},
    {16, 16, ErrorClass::access},      {19, 36, ErrorClass::access},
    {65, 65, ErrorClass::access},      {82, 83, ErrorClass::access},
    {108, 108, ErrorClass::access},    {132, 132, ErrorClass::access},
    {158, 158, ErrorClass::access},    {167, 167, ErrorClass::access},
    {4, 4, ErrorClass::other},         {7, 11, ErrorClass::other},
    {17, 17, ErrorClass::other},       {80, 80, ErrorClass::other},
    {89, 89, ErrorClass::other},       {109, 109, ErrorClass::other},
    {112, 112, ErrorClass::other},     {114, 114, ErrorClass::other},
    {128, 130, ErrorClass::other},     {145, 145, ErrorClass::other},
    {164, 164, ErrorClass::other},     {183, 183, ErrorClass::other},
    {188, 202, ErrorClass::other},     {215, 215, ErrorClass::other},
    {1816, 1816, ErrorClass::other},
};

ErrorClass class_of(DWORD error) {
    const auto range = std::find_if(
        std::begin(kErrorClasses), std::end(kErrorClasses),
        [error](const ErrorRange& row) { return row.first <= error && error <= row.last; });
    return range == std::end(kErrorClasses) ? ErrorClass::invalid : range->error_class;
}

} // namespace

std::int32_t j_copyFile(const char* source, const char* destination, bool fail_if_exists) {
    if (source == nullptr || destination == nullptr) {
        return status::kNullArgument;
    }
    if (CopyFileA(source, destination, fail_if_exists ? TRUE : FALSE) != FALSE) {
        return status::kSuccess;
    }
    const std::int32_t status = n_translateSystemError();
    switch (status) {
    case status::kFileInUse:
    case status::kAccessDenied:
        v_setErrorParamTextAndUser(destination);
        return status::kAccessDenied;
    case status::kSystemError:
        v_setErrorParamTwoTexts(source, destination);
        return status::kCopyFailed;
    case status::kDiskFull:
        v_setErrorParamDriveAndNumber(destination, 0);
        return status;
    default:
        return status;
    }
}

std::int32_t j_getFullPath(std::string* destination, const char* path, std::uint32_t size) {
    if (destination == nullptr || path == nullptr) {
        return status::kNullArgument;
    }
    std::string full_path(size, '\0');
    const DWORD length = *path == 0 ? GetCurrentDirectoryA(size, full_path.data())
                                    : GetFullPathNameA(path, size, full_path.data(), nullptr);
    if (length == 0 || length >= size) {
        v_setErrorParamTextAndNumber(path, static_cast<std::int32_t>(size));
        return status::kNoFullPath;
    }
    full_path.resize(length);
    *destination = std::move(full_path);
    return status::kSuccess;
}

std::int32_t j_checkFileExists(const char* path) {
    if (GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES) {
        return status::kSuccess;
    }
    switch (class_of(GetLastError())) {
    case ErrorClass::not_found:
        v_setErrorParamText(path);
        return status::kFileNotFound;
    case ErrorClass::access:
        v_setErrorParamText(path);
        v_setErrorParamTextAndUser(path);
        return status::kAccessDenied;
    case ErrorClass::invalid:
        if (b_hasSpecialCharacter(path)) {
            return status::kBadPathName;
        }
        return n_translateSystemError();
    default:
        return n_translateSystemError();
    }
}

} // namespace ppt

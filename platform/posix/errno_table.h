// The Windows error numbers of this machine's: one table for every call of the layer.
#pragma once

#include "platform/posix/types.h"

#include <string>

namespace platform {

enum class Transfer { none, reading, writing };

// The Windows error for an `errno` value; ERROR_GEN_FAILURE for one without a counterpart. An I/O
// error is a read or a write fault where the caller says which of the two it was doing.
DWORD error_of_errno(int number, Transfer transfer = Transfer::none);

// The same for a call that was given a path: a name that is missing is ERROR_FILE_NOT_FOUND when
// its folder is there, else ERROR_PATH_NOT_FOUND.
DWORD path_error_of_errno(int number, const std::string& native_path);

} // namespace platform

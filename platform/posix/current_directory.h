// The current directory as the documents would write it, kept beside the process's own: the text
// that SetCurrentDirectoryA was given (Z:\talks) while the process stands in the folder of this
// machine that it means. Until the first such call it is the process's working directory. Each
// drive remembers the directory that was last current on it.
#pragma once

#include "platform/posix/full_path.h"

namespace platform {

FullPath current_directory();

// The root of the drive when no directory on it has been current.
FullPath directory_of_drive(char letter);

// The process's working directory in the bytes of the file system; "/" when it has none any more.
std::string native_working_directory();

} // namespace platform

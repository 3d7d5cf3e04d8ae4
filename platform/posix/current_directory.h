// The current directory as the documents would write it, kept beside the process's own: the text
// that SetCurrentDirectoryA was given (Z:\talks) while the process stands in the folder of this
// machine that it means. Until the first such call it is the process's working directory. A
// drive remembers the directory that SetEnvironmentVariableA gives it.
#pragma once

#include "platform/posix/full_path.h"

namespace platform {

FullPath current_directory();

// The current directory when it is on the drive, else the one that the drive remembers, else its
// root.
FullPath directory_of_drive(char letter);

// The process's working directory in the bytes of the file system; "/" when it has none any more.
std::string native_working_directory();

} // namespace platform

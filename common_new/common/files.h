// File-system calls as status codes, with the names and numbers that explain a failure in the error
// parameters. Paths are ANSI. None of them throws a status code.
#pragma once

#include <cstdint>
#include <string>

namespace ppt {

// Copies a file; without `fail_if_exists` an existing destination is replaced. 8300 for null, 6100
// when the destination is in use or may not be written, 8900 when the disk is full, 5400 for a
// reason without a code of its own, else the translated system error.
std::int32_t j_copyFile(const char* source, const char* destination, bool fail_if_exists);

// The absolute path, relative to the current directory and without dot segments; an empty path
// gives the current directory. 8300 for null; 5100 when the result has `size` bytes or more, or the
// system refuses. `destination` changes only on success.
std::int32_t j_getFullPath(std::string* destination, const char* path, std::uint32_t size);

// 0 when the path names a file or folder. 7510 when it does not exist, 6100 without access, 7580
// for a special character in a name that the system calls invalid, else the translated system
// error. `path` is not null.
std::int32_t j_checkFileExists(const char* path);

} // namespace ppt

// From paths of the documents to paths of this machine; settings.h has the general form.
#pragma once

#include <string>

namespace platform {

// As to_native_path, for a file that is about to be written: the last name of a path of this
// machine (one below '/') is taken letter for letter, so that no file of another spelling is
// replaced.
std::string native_path_to_write(const std::string& path);

} // namespace platform

// Names of a folder, found without regard to letter case.
//
// The names of the folder that was read last are remembered, since a presentation may ask for many
// that are not there. They count as long as the folder has not changed since, and are kept only of
// a folder that was last changed some seconds before it was read, because times of changes are
// coarse, and that has at most 65,536 names. Like the settings they belong to the process and have
// no lock.
#pragma once

#include <optional>
#include <string>

namespace platform {

// The name in the folder that differs from `name` in letter case at most; of several the first in
// byte order, so that the answer does not depend on the order of the folder. Nothing when there is
// none and when the folder cannot be read. `folder` is a path of the file system, both texts are
// UTF-8. Cost: the names in the folder, or a look at its time when they are remembered.
std::optional<std::string> find_ignoring_case(const std::string& folder, const std::string& name);

} // namespace platform

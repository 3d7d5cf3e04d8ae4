// Verification of a whole compound file as it lies in its backing.
#pragma once

#include "platform/compound_file/backing.h"

#include <string>
#include <vector>

namespace compound_file {

// Reads all metadata anew and tells every broken invariant in a sentence. Unless `strict`, what
// costs nothing but space or looks (sectors and entries that nobody owns, chains longer than
// needed, counts in the header) is left out. Cost: O(sectors + entries).
std::vector<std::string> check_image(Backing& backing, bool strict);

} // namespace compound_file

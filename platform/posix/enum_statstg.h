// The enumerator over a storage's elements.
#pragma once

#include "platform/compound_file/compound_file.h"
#include "platform/posix/storage.h"

#include <vector>

namespace platform {

// An enumerator over a snapshot of the elements: changes of the storage, and its release, do not
// touch it. The caller owns the reference.
IEnumSTATSTG* make_enum_statstg(std::vector<compound_file::EntryInfo> elements);

} // namespace platform

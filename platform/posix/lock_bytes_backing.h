// A compound file's backing over any ILockBytes. The result of a failing call becomes an engine
// error: memory and space keep their meaning, anything else is a read or write fault.
#pragma once

#include "platform/compound_file/backing.h"
#include "platform/posix/storage.h"

namespace platform {

// Holds a reference to the array for as long as it lives. An array has no locks: who shares it is
// the caller's business.
std::unique_ptr<compound_file::Backing> make_lock_bytes_backing(ILockBytes& lock_bytes);

} // namespace platform

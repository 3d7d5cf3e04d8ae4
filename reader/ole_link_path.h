// Where a linked OLE object has its source, out of the object's own storage.
#pragma once

#include "platform/platform.h"

#include <cstdint>
#include <string>

namespace ppt {

// Puts the path of the source into `path`: 1 when it came from the relative moniker of the OLE
// stream ([MS-OLEDS] OLEStream), so that it is relative to the presentation, 0 when it is the
// display name that OLE gives, empty when there is none. Throws 8300 for null, 7295 without an OLE
// stream, 7180 when it is shorter than it announces, 7140 for a path of 1024 bytes or more, and
// what loading the object fails with. The read streams are released.
std::int32_t n_getOleLinkPath(IStorage* storage, std::string* path);

} // namespace ppt

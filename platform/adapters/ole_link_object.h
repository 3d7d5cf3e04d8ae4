// The COM object of a linked OLE object.
#pragma once

#include "platform/platform.h"

namespace platform {

// Makes the object for the OLE stream of `storage` and asks it for an interface. Throws what the
// engines throw.
HRESULT make_ole_link(IStorage* storage, REFIID iid, void** object);

} // namespace platform

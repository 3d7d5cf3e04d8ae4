// The rewrite of the links of one presentation, in place in a copy of it. docs/rewriting.md tells
// the whole story with an example.
#pragma once

#include "reader/presentation.h"

#include <cstdint>

namespace ppt {

// Visits the objects of the loaded presentation in the order of their offsets, rewrites in `copy`
// those that hold changed links (bit 0 of `flags`), moves everything behind them, and writes the
// new persist directory, user edit and current user record. Releases the copy's document stream.
// Returns the status of a failed stream operation; other failures are thrown as `int` status codes.
// After a failure the copy is left as far as it was written. Cost: the changed objects and what
// stands behind the first of them, the latter copied from stream to stream.
std::int32_t j_rewriteLinks(PptPresentation& copy, std::int32_t flags);

} // namespace ppt

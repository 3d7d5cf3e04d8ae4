// Rewrites the document container up to and including its external object list: the targets of
// changed hyperlinks and the paths of changed sounds and movies ([MS-PPT] DocumentContainer,
// ExObjListContainer).
#pragma once

#include "rewriter/record_writer.h"

#include <cstdint>

namespace ppt {

// Writes the document container that stands at `old_offset` of the loaded stream. What follows its
// external object list is left to the next copy of what lies between rewritten objects. Returns the
// size change. 8140 when the record there is no document container, when the container ends without
// an end-of-document atom, and for a media or movie container that lacks its children.
std::int32_t n_rewriteDocument(RewriteCopy& copy, std::uint32_t old_offset);

} // namespace ppt

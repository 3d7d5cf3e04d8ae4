// The link discovery walk: reads the document container and every slide, master and notes page that
// its slide lists name, and fills the external object list and the link table in the order in which
// the host sees the links.
#pragma once

#include "reader/presentation.h"

#include <cstdint>

namespace ppt {

// Walks for links (bit 0 of `flags`) and for the presentation's own id in the name of the first
// slide (bit 1). Returns a status code; the first failure ends the walk, and what was added stays.
// 6400 when the document's record is not a document container. Cost: every record of the document
// container and of the pages' drawings is read once; other containers cost a seek.
std::int32_t j_findLinks(PptPresentation& presentation, std::int32_t flags);

} // namespace ppt

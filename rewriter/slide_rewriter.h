// Rewrites slides, masters, notes and what else carries a drawing: the names of changed pictures
// and the displayed texts of changed hyperlinks, found again by their stream positions; and, when
// the document kept link ids in its own records, without those ids.
#pragma once

#include "plugin/link_record.h"
#include "rewriter/record_writer.h"

#include <cstdint>

namespace ppt {

// Writes the object that stands at `old_offset` of the loaded stream. `link` is its first changed
// link, null when there is none; links are written with bit 0 of `flags`. An object that is no
// container is not written. Returns the size change. 8140 for a drawing that does not begin as it
// has to, for a malformed string tag and for groups nested deeper than the reading allows. Cost:
// the size of the object; only what holds a changed link is taken apart.
std::int32_t n_rewriteSlideObject(RewriteCopy& copy, std::uint32_t old_offset,
                                  const LinkRecord* link, std::int32_t flags);

} // namespace ppt

// Leaves out of the copy the link ids that earlier versions kept on the pages; the document
// properties hold them now.
#pragma once

#include "rewriter/record_writer.h"

#include <cstdint>

namespace ppt {

// Writes a page's container of tags ([MS-PPT] ProgTagsContainer) without its link ids, or nothing
// when nothing else is in it. Returns the size change. Throws 8140 for a malformed string tag.
std::int32_t n_rewriteTags(PptRecord& tags, RewriteCopy& copy);

} // namespace ppt

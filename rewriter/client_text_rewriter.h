// Rewrites a shape's text box ([MS-ODRAW] OfficeArtClientTextbox): the displayed texts of changed
// hyperlinks become the new paths, and the runs and the ranges of all hyperlinks follow.
#pragma once

#include "plugin/link_record.h"
#include "rewriter/record_writer.h"

#include <cstdint>

namespace ppt {

// Writes the text box, header included, that holds `link`, the first changed link inside it. At
// most 1000 texts are replaced in one text; a text whose runs are not understood stays as it is,
// and so do its runs. Returns the size change. Throws what the conversion of a path throws. Cost:
// the size of the box and of the new paths.
std::int32_t n_rewriteClientText(PptRecord& text_box, const LinkRecord& link, RewriteCopy& copy);

} // namespace ppt

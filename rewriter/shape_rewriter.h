// Rewrites one shape: the name of a linked picture in its option table, or the hyperlinks of its
// text box ([MS-ODRAW] OfficeArtSpContainer, OfficeArtFOPT, OfficeArtClientTextbox).
#pragma once

#include "plugin/link_record.h"
#include "rewriter/record_writer.h"

#include <cstdint>

namespace ppt {

// Writes the children of a shape that holds `link`, the first changed link inside it. When that is
// its picture, a hyperlink in its text keeps the text. Returns the size change.
std::int32_t n_rewriteShape(PptRecord& shape, const LinkRecord& link, RewriteCopy& copy);

} // namespace ppt

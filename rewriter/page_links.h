// The links that stand in the records of a page, where the rewriting looks for them: the names of
// linked pictures and the displayed texts of hyperlinks.
#pragma once

#include "plugin/link_record.h"
#include "reader/record.h"
#include "rewriter/rewrite_copy.h"

#include <cstdint>
#include <vector>

namespace ppt {

// Whether a link lies inside a record: behind its first byte and before its end.
bool b_liesInside(const LinkRecord& link, const PptRecord& record);

// Whether the options ask for displayed texts to become the new path.
bool b_rewritesTexts();

// Whether the text of a changed hyperlink becomes the new path: the options ask for it, and with
// "e" among them it was the old path.
bool b_textFollowsPath(const LinkRecord& link);

// Table indexes of the changed links that should have been written in pages or OLE storages, but
// were not: the place of a picture's name was not certain, the runs of a text are not understood,
// the page or shape was never reached, an OLE object did not take its new source. Cost: the length
// of the link table.
std::vector<std::uint32_t> links_not_written(const RewriteCopy& copy);

} // namespace ppt

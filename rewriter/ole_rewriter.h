// Re-targets a linked OLE object: its storage is rebuilt in memory, takes the new source and goes
// back into its record ([MS-PPT] ExOleObjStg) in the form it had, compressed or plain.
#pragma once

#include "plugin/link_record.h"
#include "rewriter/rewrite_copy.h"

#include <cstdint>

namespace ppt {

// Writes the storage at `old_offset` of the loaded stream with the file name of `link` as its
// source and returns the size change. A source that OLE refuses or does not find leaves the object
// unwritten, with the link's initial and new file names as error parameters; so does, without
// parameters, a path that is neither on a drive nor a UNC path. Links that were written are noted
// in the copy. Throws 8300 for a null link, 8140 for an object that is no storage, and what reading
// the storage or writing the record fails with. Cost: the size of the storage.
std::int32_t n_rewriteOleObject(RewriteCopy& copy, std::uint32_t old_offset,
                                const LinkRecord* link);

} // namespace ppt

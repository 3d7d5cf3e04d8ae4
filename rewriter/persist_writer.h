// The end of a rewritten document stream: the offsets that the document keeps about itself are
// moved, and a new persist directory and user edit take the place of the newest ones ([MS-PPT]
// PersistDirectoryAtom, UserEditAtom, CurrentUserAtom).
//
// The new records stand where the old ones stood only when nothing else does: the old user edit
// directly behind the old directory, and the end of the stream behind the user edit. Otherwise they
// stand where the user edit stood, if that ended the stream, or at the stream's end; the old ones
// then stay as bytes that nothing refers to.
#pragma once

#include "rewriter/rewrite_copy.h"

#include <cstdint>

namespace ppt {

// Writes the moved user edits, the new persist directory and the new user edit, and points the
// copy's current user record (in memory) at the latter. To be called once, when everything else
// stands in its place and nothing is pending in the writer. Returns the size that the document
// stream has from now on; what stands behind is left over. Throws `int` status codes.
std::uint32_t n_writePersistDirectory(RewriteCopy& copy);

// Moves the offsets in the current user record, the newest user edit and, in the copy's stream, all
// older user edits.
void v_shiftUserEditChain(RewriteCopy& copy);

// The body of the new persist directory: every object at or behind the first moved offset, and
// every object that the newest directory listed. With a first moved offset of 0, all ids.
bytes::Bytes n_buildPersistDirectory(const PersistDirectory& directory,
                                     std::uint32_t first_moved_offset);

} // namespace ppt

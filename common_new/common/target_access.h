// Where the target file of a link lies, as seen from the presentation that holds the link.
#pragma once

#include <cstdint>

namespace ppt {

// What the host's buffer for a found file holds, terminator included.
inline constexpr std::uint32_t kFoundFileSize = 260;

// Resolves `pc_targetFile` (absolute, relative to the master's folder or to the root of its drive,
// possibly followed by "!" and an item) against the folder of `pc_masterFile` and looks for it. A
// found file's absolute path, without the item, is written to all 260 bytes of `pc_foundFile`.
//
// 0 when a file or folder is there. 7510 when neither the path exists nor its items lead to a file,
// 7520 when the master's folder cannot be made current, 5100 for a path of 260 bytes or more, 7140
// for a target of 1024, 8000 for a master path that does not split, 8300 for null; 6100, 7580 and
// translated system errors of the look-up, with the path written all the same.
//
// The process's current directory stays at the master's folder. Needs no loaded presentation.
std::int32_t j_accessTarget(const char* pc_targetFile, const char* pc_masterFile,
                            char* pc_foundFile);

} // namespace ppt

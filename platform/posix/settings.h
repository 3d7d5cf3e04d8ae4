// What a POSIX machine must be told that Windows knows by itself: the ANSI code page, and where
// drives and shares lie. Each can also be set by an environment variable, which is read once at the
// first use: PPT_CODE_PAGE=1252, and PPT_DRIVES with entries like the argument of `map_drive`,
// separated by ';'. Settings are process-wide and have no lock: set them before the first call.
#pragma once

#include <cstdint>
#include <string>

namespace platform {

// Chooses the ANSI code page. False when the page is not known to this machine; nothing changes.
bool set_ansi_code_page(std::uint32_t code_page);

// Adds one entry to the table of drives and shares: "Z:=/mnt/z" (a drive at a folder),
// "\\srv\pub=/mnt/pub" (a share at a folder) or "Z:=\\srv\pub" (a drive that is a share). A later
// entry for the same drive or share replaces the earlier one. False when the text is of none of
// these forms; nothing changes.
bool map_drive(const std::string& entry);

// The path of this machine that a path of the documents stands for, by the rules of kernel.h, in
// the bytes of the file system. Empty when its drive or share is not in the table (last error
// ERROR_PATH_NOT_FOUND) or when it does not convert from the ANSI code page (ERROR_INVALID_NAME).
// Names that are missing in any letter case stay as they were given.
std::string to_native_path(const std::string& path);

// Whether a linked object takes a new source without looking for its file (off at first): for
// machines that do not see the share where the file will be.
void trust_link_targets(bool trust);

} // namespace platform

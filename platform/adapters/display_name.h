// Display names of link sources: a path, or a path, '!' and an item; and the texts of stored
// monikers, which are in the ANSI code page.
#pragma once

#include "platform/ole_link/moniker.h"
#include "platform/platform.h"

#include <string>
#include <string_view>

namespace platform {

// What GetFileAttributesA says of a path; INVALID_FILE_ATTRIBUTES also for one that the ANSI code
// page cannot hold.
DWORD attributes_of(std::u16string_view path);

// Whether the path names a file that is there, not a folder.
bool is_file(std::u16string_view path);

std::u16string wide_text(const ole_link::Text& text);

// With a UTF-16 form when the text has characters other than ASCII, so that it does not depend on
// the code page.
ole_link::Text stored_text(std::u16string_view text);

// Delimiters and names one behind the other; empty without items.
std::u16string display_name_of_items(const ole_link::Moniker& source);
std::u16string display_name(const ole_link::Moniker& source);

struct SourceName {
    std::u16string_view file;
    std::u16string_view items; // with their first delimiter; empty when there are none
};

// Both '!' and file names with '!' are legal, so the name is split in front of the first of these
// that holds: what follows an existing file (the longest), the items that the source had before,
// the first '!' of the last path component. Cost: one look-up for each '!' of the name.
SourceName split_display_name(std::u16string_view name, std::u16string_view known_items);

} // namespace platform

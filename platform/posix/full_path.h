// Paths as the documents write them, taken apart and made absolute by the system's rules. Texts are
// in the ANSI code page; a lead byte and its trail byte are one character and never a separator.
//
//   /home/u/talk.ppt     a path of this machine; stays with '/'
//   C:\docs\talk.ppt     a drive
//   \\srv\pub\talk.ppt   a share
//   C:talk.ppt           below the directory that was last current on the drive
//   \docs\talk.ppt       below the drive, share or '/' of the current directory
//   talk.ppt             below the current directory
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

struct FullPath {
    enum class Root { machine, drive, share };

    Root root = Root::machine;
    std::string head; // empty for machine, "C:" for a drive, "\\srv\pub" for a share
    std::vector<std::string> names;
    bool ends_with_separator = false;

    // The path as text; the root of a drive and of the machine always end with a separator.
    std::string text() const;
};

// The absolute path: names "." and ".." are resolved without looking at the disk and never go above
// the root; on a drive or share the dots and spaces that end the path are dropped, and so is a
// single dot that ends a name.
FullPath full_path(std::string_view path);

// Whether the path stands below the current directory: no root, no drive.
bool is_relative(std::string_view path);

} // namespace platform

// A file as the user named it, as the plug-in is told of it and as this system finds it.
//
// The plug-in matches link ids relative to the presentation's folder, so it always gets a full
// path: a Windows path (C:\..., \\server\share\...) as it stands, any other made absolute here.
#pragma once

#include <filesystem>
#include <string>

namespace pptlinks {

struct FileName {
    std::string typed;  // in UTF-8, for messages
    std::string ansi;   // full path in the ANSI code page, for the plug-in
    std::string native; // full path in the bytes of the file system; empty when a Windows path
                        // names a drive or share that is not mapped
    bool is_windows_path = false;
};

// A native name for std::filesystem, and back: UTF-8 on Windows, the bytes of the file system
// elsewhere.
std::filesystem::path fs_path(const std::string& native);
std::string native_name(const std::filesystem::path& path);

// What names the same file whatever becomes the current directory: `typed` made absolute, a Windows
// path as it stands. In UTF-8.
std::string absolute_name(const std::string& typed);

// Throws StatusFailure 6505 for a path that is not valid UTF-8 or that the ANSI code page cannot
// hold.
FileName file_name(const std::string& typed);

// Another file in the same folder; `name` is ASCII.
FileName beside(const FileName& file, const std::string& name);

// The folder in which the plug-in is told that the file lies, in UTF-8: a folder that is named in
// two ways has two such texts.
std::string folder_as_named(const FileName& file);

// Whether both are there and are one file, whatever their names; native names.
bool is_same_file(const std::string& a, const std::string& b);

} // namespace pptlinks

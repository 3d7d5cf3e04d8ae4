// Splitting a path into its parts and composing one from parts, both with fixed capacities.
//
// '\' and '/' both separate. A double-byte character of the ANSI code page is one character and
// never a separator or a dot.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ppt {

// Sizes of the path parts' buffers, terminator included: a part is at most one byte shorter.
inline constexpr std::size_t kPathCapacity = 1024;
inline constexpr std::size_t kSmallDirectoryCapacity = 256;
inline constexpr std::size_t kNameCapacity = 256;

// Views into the path that was split.
struct PathParts {
    std::string_view drive;     // two characters, the second ':'; or empty
    std::string_view directory; // behind the drive, with its last separator; or empty
    std::string_view file_name; // up to the last dot
    std::string_view extension; // from the last dot on
};

inline bool is_separator(char character) {
    return character == '\\' || character == '/';
}

// Whether the path begins with a drive.
inline bool has_drive(std::string_view path) {
    return path.size() >= 2 && path[1] == ':';
}

// The bytes of the character at `at`: 2 for a double-byte character, else 1.
std::size_t character_size(std::string_view text, std::size_t at);

// The first characters of the text that fit `size` bytes.
std::string_view whole_characters(std::string_view text, std::size_t size);

// Splits whatever the lengths of the parts. Cost: one scan.
PathParts split_path(std::string_view path);

// Splits; false, and all parts empty, when the directory reaches `directory_capacity` or the file
// name or the extension 256 bytes.
bool b_splitPath(std::string_view path, std::size_t directory_capacity, PathParts* parts);

inline constexpr std::int32_t kMakePathInvalid = 22;
inline constexpr std::int32_t kMakePathNoRoom = 34;

// Composes a path of at most `size` - 1 bytes: drive letter and ':', directory with a separator at
// its end, file name, extension with its dot; empty parts are left out. 22 for a null destination
// (nothing is written) or a size of 0, 34 and an empty destination when it does not fit; each of
// these also makes an assertion report.
std::int32_t n_makePath(std::string* destination, std::size_t size, std::string_view drive,
                        std::string_view directory, std::string_view file_name,
                        std::string_view extension);

} // namespace ppt

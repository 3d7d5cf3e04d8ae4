// The one call that the plug-in makes beside the system's own.
#pragma once

#include <cstdio>

// Opens the file at the ANSI path for writing from its start, or null. Bytes are written as they
// are given. The caller closes it.
inline std::FILE* open_text_log(const char* path) {
    return std::fopen(path, "wb");
}

// Length and limit checks, and conversion between the ANSI texts in which paths are kept and the
// UTF-16 of COM, structured storage, slide text and the error parameters.
//
// The checks and the `j_` functions never throw; what failed is left in the error parameters.
// Lengths of ANSI texts are bytes (a double-byte character counts twice), of UTF-16 texts units.
#pragma once

#include "platform/platform.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace ppt {

// Whether the text is shorter than the limit; otherwise the parameters become the text and the
// limit.
bool b_checkLength(std::string_view text, std::int32_t limit);

// Whether the value is at most the limit; otherwise the parameters become the value and the limit.
bool b_checkLimit(std::int32_t value, std::int32_t limit);

// Converts a zero-terminated ANSI text with its terminator into `size` units. `written` (may be
// null) gets the units written, but only when each byte gave one unit. 8300 for null, 6505 and 7140
// with parameters, 8000 for an exception of the platform. A size of 0 writes nothing.
std::int32_t j_ansiToWide(const char* source, WCHAR* destination, std::int32_t size,
                          std::int32_t* written = nullptr);

// Converts `length` units, or with -1 all up to and including the terminator, into `size` bytes.
// Characters without an ANSI form become the system's default character. `written` (may be null)
// gets the bytes written, unless they are fewer than the units. Failures as above, without 6505.
std::int32_t j_wideToAnsi(const WCHAR* source, std::int32_t length, char* destination,
                          std::int32_t size, std::int32_t* written = nullptr);

// Sets the error parameters to the path and the current user's name. When the name cannot be had,
// or a UTF-16 path does not fit 1023 bytes, they stay as they were.
void v_setErrorParamTextAndUser(const char* path);
void v_setErrorParamTextAndUser(const WCHAR* path);

// Whether a character of the ANSI code page may take more than one byte.
bool b_codePageIsMultiByte();

// The converted text, of any length; an empty text gives an empty one and zeros inside a text are
// kept. Both throw the status code of a failed conversion as an `int`. Cost: linear.
std::basic_string<WCHAR> wide_from_ansi(std::string_view text);
std::string ansi_from_wide(std::basic_string_view<WCHAR> text);

} // namespace ppt

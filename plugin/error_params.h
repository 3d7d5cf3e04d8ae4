// The error parameter array: the texts and numbers that explain the last failure, in UTF-16,
// separated by U+0001. The host fetches it right after a call that failed.
//
// There is one array for the process, without a lock. A setting function replaces what it held, a
// successful operation leaves it alone. It owns its text. Nothing here throws or fails the
// operation that reports the error: when there is no memory for the parameters they stay empty, or,
// when appending, as they were.
#pragma once

#include "platform/platform.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace ppt {

// As the host sees it.
struct ErrorParamArray {
    std::int32_t capacity; // UTF-16 units that `text` holds; 0 when there are no parameters
    WCHAR* text; // zero-terminated, valid until the next failure; null when there are none
};

// The same address for the life of the library.
ErrorParamArray* error_param_array();

inline constexpr WCHAR kErrorParamSeparator = 1;

// Setting functions. Texts without a kind in the name are in the ANSI code page.
void v_setErrorParamText(std::string_view text);
void v_setErrorParamWideText(std::basic_string_view<WCHAR> text);
// `second` may be null: then the first text alone, without a separator.
void v_setErrorParamTwoTexts(std::string_view first, const char* second);
void v_setErrorParamTextAndWide(std::string_view first, std::basic_string_view<WCHAR> second);
void v_setErrorParamTextAndNumber(std::string_view text, std::int32_t number);
void v_setErrorParamNumbers(std::int32_t first, std::int32_t second);
// How many there are, then each; at most 2^31.
void v_setErrorParamCountAndIndexes(std::span<const std::uint32_t> indexes);

// Appending functions: the separator and the item. False when there was no memory.
bool b_appendErrorParamText(std::string_view text);
bool b_appendErrorParamWideText(std::basic_string_view<WCHAR> text);
bool b_appendErrorParamNumber(std::int32_t number);

} // namespace ppt

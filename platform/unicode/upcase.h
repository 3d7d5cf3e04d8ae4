// Upper-casing of UTF-16 units for comparing names, the same on every machine and in every locale:
// one unit in, one unit out, by the simple mappings of the Unicode character database. Units
// without such a mapping, and both halves of surrogate pairs, come back as they are.
#pragma once

#include <string_view>

namespace unicode {

// Constant time for ASCII, a binary search in a few hundred ranges for the rest.
char16_t upper(char16_t unit);

// Whether two texts are the same when letter case does not count.
bool equal_ignoring_case(std::u16string_view a, std::u16string_view b);

} // namespace unicode

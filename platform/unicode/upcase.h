// Upper-casing of UTF-16 units for comparing names, the same on every machine and in every locale:
// one unit in, one unit out, by the simple mappings of the Unicode character database. Units
// without such a mapping, and both halves of surrogate pairs, come back as they are.
#pragma once

namespace unicode {

// Constant time for ASCII, a binary search in a few hundred ranges for the rest.
char16_t upper(char16_t unit);

} // namespace unicode

// What a code page is called by iconv, and what iconv leaves undefined although Windows does not.
#pragma once

#include <cstdint>

namespace code_page {

// The iconv name of a table-driven page; null for the Unicode pages and for those not known.
const char* iconv_name(std::uint32_t page);

// The unit that Windows gives for a single byte that the character set leaves undefined; 0 for
// none.
char16_t unit_for_undefined(std::uint32_t page, std::uint8_t byte);

} // namespace code_page

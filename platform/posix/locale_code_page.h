// The code page of the locale that the environment names (LC_ALL, LC_CTYPE, LANG).
#pragma once

#include "platform/posix/types.h"

namespace platform {

// 65001 for the plain C locale, for a locale that is not installed and does not name a codeset, and
// for a codeset without a page of its own. The process's own locale is neither used nor changed.
UINT code_page_of_locale();

} // namespace platform

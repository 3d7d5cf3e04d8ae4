// The text form in which a link id stands inside a document: "MORVANE-LINK-ID=" and, directly
// behind it, what the host writes for the id.
#pragma once

#include "platform/platform.h"

#include <string>
#include <string_view>

namespace ppt {

inline constexpr std::string_view kLinkIdTag = "MORVANE-LINK-ID=";
// The name of the document property that holds the presentation's own id.
inline constexpr std::string_view kTargetFileIdName = "MORVANE-LINK-ID";

// The first tag in a zero-terminated text (letter case counts), or null.
const char* ps_findLinkIdTag(const char* text);

// Cuts the UTF-16 text of a string atom at the start of its first tag: the tag and everything
// behind it go. Texts without a tag stay.
void v_stripLinkIdTag(std::basic_string<WCHAR>& text);

} // namespace ppt

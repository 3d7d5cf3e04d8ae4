// The form in which a link's path stands as the value of its link id property, and the names that
// such properties have.
#pragma once

#include "hostapi/hostapi.h"
#include "plugin/link_record.h"

#include <string>
#include <string_view>

namespace ppt {

inline constexpr std::string_view kHyperlinkListName = "_PID_HLINKS";

// The path relative to the presentation's folder, in ASCII lower case. A presentation in a folder
// too deep to form relative paths leaves the path whole.
std::string stored_path(const std::string& file_name, const std::string& presentation_path);

// The tag, the id, a suffix where the file name has one and there is room for it (from its first
// "!", else behind its first "]", which stays in front of a digit), and "%%".
std::string link_property_name(const LinkRecord& link);
// The same without the suffix, which alone may hold other characters than ASCII.
std::string plain_property_name(const LinkRecord& link);

// The text form of an id.
std::string id_text(const id64& id);

} // namespace ppt

#include "linkid/link_id_tag.h"

#include <algorithm>
#include <cstring>

namespace ppt {

const char* ps_findLinkIdTag(const char* text) {
    return std::strstr(text, kLinkIdTag.data());
}

void v_stripLinkIdTag(std::basic_string<WCHAR>& text) {
    static const std::basic_string<WCHAR> wide_tag(kLinkIdTag.begin(), kLinkIdTag.end());
    text.resize(std::min(text.find(wide_tag), text.size()));
}

} // namespace ppt

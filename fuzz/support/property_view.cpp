#include "fuzz/support/property_view.h"

#include "platform/base/error.h"

#include <array>

namespace fuzz {

using namespace property_set;

ShownProperties shown(const Section& section) {
    ShownProperties all;
    for (const PropertyInfo& info : section.list()) {
        ShownProperty& one = all[info.id];
        one.type = info.type;
        one.name = info.name;
        try {
            one.value = section.read(info.id);
        } catch (const platform::Error&) { // stays without a value
        }
    }
    return all;
}

PropertySet open_property_set(std::uint8_t choice, bytes::Bytes stream) {
    constexpr std::array<std::uint32_t, 4> kDefaultPages = {1252, 932, 65001, 1200};
    const FormatId format = (choice & 1) == 0 ? kUserDefinedFormat : kDocumentFormat;
    const std::uint32_t page = kDefaultPages[(choice >> 2) % kDefaultPages.size()];
    return (choice & 2) == 0 ? PropertySet::open(std::move(stream), format, page)
                             : PropertySet::create(std::move(stream), format, page);
}

} // namespace fuzz

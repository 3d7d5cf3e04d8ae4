// What a property set shows of itself, for comparing.
#pragma once

#include "platform/property_set/property_set.h"

#include <map>
#include <optional>
#include <string>

namespace fuzz {

struct ShownProperty {
    std::uint16_t type = 0;
    std::optional<std::u16string> name;
    std::optional<property_set::Value> value; // none when it cannot be decoded

    friend bool operator==(const ShownProperty&, const ShownProperty&) = default;
};

using ShownProperties = std::map<property_set::PropertyId, ShownProperty>;

ShownProperties shown(const property_set::Section& section);

// Opens the section that `choice` selects, under the default code page that it selects, or makes
// it. Throws platform::Error.
property_set::PropertySet open_property_set(std::uint8_t choice, bytes::Bytes stream);

} // namespace fuzz

// Ids for new properties.
#pragma once

#include "platform/property_set/format.h"

#include <vector>

namespace property_set {

// The `count` smallest ids from `first` upwards (2 at least) that are not in `used` and whose
// companions are not either. Throws Errc::too_large when fewer than `count` are left below
// kCompanionBit. Cost: a sort of `used`, then one pass.
std::vector<PropertyId> free_ids(std::vector<PropertyId> used, PropertyId first, std::size_t count);

} // namespace property_set

// See free_ids.h.
#include "platform/property_set/free_ids.h"

#include "platform/base/error.h"

#include <algorithm>
#include <string>

namespace property_set {

std::vector<PropertyId> free_ids(std::vector<PropertyId> used, PropertyId first,
                                 std::size_t count) {
    std::sort(used.begin(), used.end());
    PropertyId candidate = std::max(first, kFirstOrdinaryId);
    auto own = std::lower_bound(used.begin(), used.end(), candidate);
    auto companion = std::lower_bound(used.begin(), used.end(), candidate | kCompanionBit);
    std::vector<PropertyId> ids;
    for (; ids.size() < count && candidate < kCompanionBit; ++candidate) {
        own = std::find_if(own, used.end(), [=](PropertyId id) { return id >= candidate; });
        companion = std::find_if(companion, used.end(),
                                 [=](PropertyId id) { return id >= (candidate | kCompanionBit); });
        const bool own_used = own != used.end() && *own == candidate;
        const bool companion_used =
            companion != used.end() && *companion == (candidate | kCompanionBit);
        if (!own_used && !companion_used) {
            ids.push_back(candidate);
        }
    }
    if (ids.size() < count) {
        throw platform::Error(platform::Errc::too_large, "property ids: " + std::to_string(count) +
                                                             " wanted from " +
                                                             std::to_string(first) + ", " +
                                                             std::to_string(ids.size()) + " left");
    }
    return ids;
}

} // namespace property_set

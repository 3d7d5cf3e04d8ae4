#include "plugin/error_names.h"

#include <algorithm>

namespace ppt {

namespace {

constexpr std::uint32_t kFacilityItf = 4;
constexpr std::uint32_t kFacilityControl = 10;

bool is_defined_by_application(std::uint32_t code) {
    const std::uint32_t facility = (code >> 16) & 0x1FFF;
    const std::uint32_t number = code & 0xFFFF;
    return (facility == kFacilityItf && number >= 512) ||
           (facility == kFacilityControl && number >= 600);
}

} // namespace

const char* error_name(std::uint32_t code) {
    const ErrorName* const end = kErrorNames + kErrorNameCount;
    const ErrorName* const found =
        std::lower_bound(kErrorNames, end, code, [](const ErrorName& entry, std::uint32_t wanted) {
            return entry.code < wanted;
        });
    if (found != end && found->code == code) {
        return found->name;
    }
    return is_defined_by_application(code) ? "" : "Unknown or new error";
}

} // namespace ppt

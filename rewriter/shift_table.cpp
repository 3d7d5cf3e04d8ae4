#include "rewriter/shift_table.h"

#include "plugin/checked_allocation.h"
#include "plugin/status.h"

#include <algorithm>
#include <limits>

namespace ppt {

void ShiftTable::add(std::uint32_t old_offset, std::int32_t size_change) {
    const std::int64_t before = shifts_.empty() ? 0 : shifts_.back().total;
    resize_checked(shifts_, shifts_.size() + 1);
    shifts_.back() = {old_offset, before + size_change};
}

std::uint32_t ShiftTable::moved(std::uint32_t offset) const {
    const auto behind = std::lower_bound(
        shifts_.begin(), shifts_.end(), offset,
        [](const Shift& shift, std::uint32_t wanted) { return shift.old_offset < wanted; });
    const std::int64_t total = behind == shifts_.begin() ? 0 : std::prev(behind)->total;
    const std::int64_t result = std::int64_t{offset} + total;
    if (result < 0 || result > std::numeric_limits<std::int32_t>::max()) {
        throw static_cast<int>(status::kDamaged);
    }
    return static_cast<std::uint32_t>(result);
}

} // namespace ppt

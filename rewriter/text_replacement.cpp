#include "rewriter/text_replacement.h"

#include <algorithm>
#include <limits>

namespace ppt {

namespace {

// A place inside a replaced stretch moves with its start, but not behind the new words. Places that
// a damaged file puts near 2^32 stop there, so that no end gets in front of its start.
std::uint32_t moved_within(const TextReplacement& stretch, std::uint32_t place) {
    if (place >= stretch.old_end) {
        const std::uint64_t moved = std::uint64_t{stretch.new_end} + (place - stretch.old_end);
        return static_cast<std::uint32_t>(
            std::min<std::uint64_t>(moved, std::numeric_limits<std::uint32_t>::max()));
    }
    return stretch.new_start +
           std::min(place - stretch.old_start, stretch.new_end - stretch.new_start);
}

} // namespace

std::uint32_t TextReplacements::moved_start(std::uint32_t place) const {
    const auto behind =
        std::partition_point(all_.begin(), all_.end(), [place](const TextReplacement& stretch) {
            return stretch.old_start <= place;
        });
    return behind == all_.begin() ? place : moved_within(*std::prev(behind), place);
}

std::uint32_t TextReplacements::moved_end(std::uint32_t place) const {
    const auto behind =
        std::partition_point(all_.begin(), all_.end(), [place](const TextReplacement& stretch) {
            return stretch.old_start < place;
        });
    return behind == all_.begin() ? place : moved_within(*std::prev(behind), place);
}

} // namespace ppt

// Binary search over extents, the last hit and its successor first.
#include "platform/compound_file/chain_map.h"

#include <algorithm>

namespace compound_file {

void ChainMap::append(std::uint64_t file_offset, std::uint64_t length) {
    if (!extents_.empty() && extents_.back().file_offset + extents_.back().length == file_offset) {
        extents_.back().length += length;
    } else {
        extents_.push_back({length_, file_offset, length});
    }
    length_ += length;
}

void ChainMap::cut(std::uint64_t length) {
    while (!extents_.empty() && extents_.back().stream_offset >= length) {
        extents_.pop_back();
    }
    if (!extents_.empty()) {
        extents_.back().length =
            std::min(extents_.back().length, length - extents_.back().stream_offset);
    }
    length_ = std::min(length_, length);
}

const ChainMap::Extent& ChainMap::find(std::uint64_t offset) const {
    for (std::size_t i = last_hit_; i < extents_.size() && i < last_hit_ + 2; ++i) {
        if (extents_[i].has(offset)) {
            last_hit_ = i;
            return extents_[i];
        }
    }
    const auto behind = std::upper_bound(
        extents_.begin(), extents_.end(), offset,
        [](std::uint64_t value, const Extent& e) { return value < e.stream_offset; });
    last_hit_ = static_cast<std::size_t>(behind - extents_.begin()) - 1;
    return extents_[last_hit_];
}

ChainMap::Place ChainMap::locate(std::uint64_t offset) const {
    const Extent& extent = find(offset);
    const std::uint64_t inside = offset - extent.stream_offset;
    return {extent.file_offset + inside, extent.length - inside};
}

ChainMap::Place ChainMap::locate_before(std::uint64_t end) const {
    const Extent& extent = find(end - 1);
    return {extent.file_offset, end - extent.stream_offset};
}

} // namespace compound_file

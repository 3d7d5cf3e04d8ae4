// Resizing, and the ways in which a stream gives up sectors.
#include "platform/compound_file/stream_growth.h"
#include "platform/compound_file/stream_node.h"

namespace compound_file {

using platform::Errc;
using platform::Error;

void ChainedStream::resize(std::uint64_t size) {
    begin_change();
    if (size > size_) {
        StreamGrowth growth(*this, size);
        growth.zero_up_to(size);
        growth.commit();
        return;
    }
    if (size < size_) {
        if (size > map_.length()) {
            throw Error(Errc::corrupt, "resize to " + std::to_string(size) +
                                           " of a stream whose sectors end at " +
                                           std::to_string(map_.length()));
        }
        shrink(size);
    }
}

void ChainedStream::shrink(std::uint64_t size) {
    if (size == 0) {
        release_all();
        set_size(0);
        return;
    }
    if (is_small()) {
        const std::size_t kept = static_cast<std::size_t>((size + kMiniBytes - 1) / kMiniBytes);
        if (kept < minis_.size()) {
            engine_.minis().cut(minis_.back(), minis_[kept - 1],
                                static_cast<std::uint32_t>(minis_.size() - kept));
            minis_.resize(kept);
            map_.cut(std::uint64_t{kept} * kMiniBytes);
        }
    } else if (size < kMiniCutoff) {
        shrink_to_mini(size);
        return;
    } else {
        const Geometry geometry = engine_.geometry();
        const std::uint64_t kept = geometry.sectors_for(size) << geometry.shift();
        if (kept < map_.length()) {
            const Sector old_last = last_sector();
            const std::uint64_t removed = (map_.length() - kept) >> geometry.shift();
            map_.cut(kept);
            engine_.sectors().cut(old_last, last_sector(), static_cast<std::uint32_t>(removed));
        }
    }
    set_size(size);
}

void ChainedStream::shrink_to_mini(std::uint64_t size) {
    bytes::Bytes kept(static_cast<std::size_t>(size));
    if (read_at(0, kept) != kept.size()) {
        throw Error(Errc::read_fault, "sectors behind the end of the file");
    }
    const Pick pick = engine_.take_minis(kEndOfChain, (size + kMiniBytes - 1) / kMiniBytes);
    ChainMap map;
    std::vector<Sector> minis;
    for (const Run& run : pick.runs) {
        for (std::uint32_t i = 0; i < run.count; ++i) {
            minis.push_back(run.first + i);
            map.append(engine_.minis().mini_offset(minis.back()), kMiniBytes);
        }
    }
    std::swap(map_, map);
    try {
        put(0, kept);
    } catch (...) {
        std::swap(map_, map);
        throw;
    }
    engine_.link_minis(pick);
    std::swap(map_, map);
    release_all(); // of the ordinary sectors, which the size still names
    map_ = std::move(map);
    minis_ = std::move(minis);
    set_size(size);
}

void ChainedStream::release_all() {
    if (map_.length() > 0) {
        if (is_small()) {
            engine_.minis().release(minis_.front(), minis_.back(),
                                    static_cast<std::uint32_t>(minis_.size()));
        } else {
            engine_.sectors().release(
                first_sector(), last_sector(),
                static_cast<std::uint32_t>(map_.length() >> engine_.geometry().shift()));
        }
    }
    minis_.clear();
    map_ = ChainMap();
}

void ChainedStream::set_size(std::uint64_t size) {
    if (size < size_) {
        drop_window();
    }
    size_ = size;
    engine_.directory().set_stream(entry_, first_sector(), size);
}

void ChainedStream::abandon() {
    if (!engine_.is_crossed(entry_)) {
        release_all();
    }
    minis_.clear();
    map_ = ChainMap();
    size_ = 0;
    drop_window();
    abandoned_ = true;
}

} // namespace compound_file

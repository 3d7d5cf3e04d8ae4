// Growing inside the mini stream, inside the ordinary sectors, and from the one to the other.
#include "platform/compound_file/stream_growth.h"

#include <utility>

namespace compound_file {

using platform::Errc;
using platform::Error;

StreamGrowth::StreamGrowth(ChainedStream& stream, std::uint64_t new_size)
    : stream_(stream)
    , new_size_(new_size)
    , old_length_(stream.map_.length())
    , zero_in_file_from_(stream.engine_.backing().size()) {
    const Geometry geometry = stream.engine_.geometry();
    if (geometry.version == Version::v3 && new_size > kV3Limit) {
        throw Error(Errc::too_large, "stream of " + std::to_string(new_size) +
                                         " bytes, version 3 allows " + std::to_string(kV3Limit));
    }
    if (old_length_ < stream.size_) {
        throw Error(Errc::corrupt, "a stream of " + std::to_string(stream.size_) +
                                       " bytes whose sectors end at " +
                                       std::to_string(old_length_) + " cannot grow");
    }
    if (!stream.is_small()) {
        grow_sectors();
    } else if (new_size < kMiniCutoff) {
        grow_minis();
    } else {
        leave_mini_stream();
    }
}

StreamGrowth::~StreamGrowth() {
    if (committed_) {
        return;
    }
    stream_.drop_window(); // it may have been patched with what is given up here
    if (small_) {
        stream_.map_ = std::move(*small_);
    } else {
        stream_.map_.cut(old_length_);
    }
}

void StreamGrowth::grow_minis() {
    const std::uint64_t needed = (new_size_ + kMiniBytes - 1) / kMiniBytes;
    if (needed <= stream_.minis_.size()) {
        return;
    }
    pick_ = stream_.engine_.take_minis(stream_.last_sector(), needed - stream_.minis_.size());
    for (const Run& run : pick_.runs) {
        for (Sector mini = run.first; mini < run.first + run.count; ++mini) {
            stream_.map_.append(stream_.engine_.minis().mini_offset(mini), kMiniBytes);
        }
    }
}

void StreamGrowth::grow_sectors() {
    const Geometry geometry = stream_.engine_.geometry();
    const std::uint64_t needed = geometry.sectors_for(new_size_);
    const std::uint64_t there = old_length_ >> geometry.shift();
    if (needed <= there) {
        return;
    }
    pick_ = stream_.engine_.take_sectors(stream_.last_sector(), needed - there);
    for (const Run& run : pick_.runs) {
        stream_.map_.append(geometry.offset(run.first),
                            std::uint64_t{run.count} << geometry.shift());
    }
}

void StreamGrowth::leave_mini_stream() {
    crosses_ = true;
    bytes::Bytes old_bytes(static_cast<std::size_t>(stream_.size_));
    if (stream_.read_at(0, old_bytes) != old_bytes.size()) {
        throw Error(Errc::read_fault, "mini sectors behind the end of the file");
    }
    const Geometry geometry = stream_.engine_.geometry();
    pick_ = stream_.engine_.take_sectors(kEndOfChain, geometry.sectors_for(new_size_));
    ChainMap map;
    for (const Run& run : pick_.runs) {
        map.append(geometry.offset(run.first), std::uint64_t{run.count} << geometry.shift());
    }
    small_ = std::exchange(stream_.map_, std::move(map));
    try {
        stream_.put(0, old_bytes);
    } catch (...) {
        stream_.map_ = std::move(*small_);
        throw;
    }
}

void StreamGrowth::zero_up_to(std::uint64_t offset) {
    stream_.zero(stream_.size_, offset, zero_in_file_from_);
}

void StreamGrowth::commit() {
    Engine& engine = stream_.engine_;
    committed_ = true;
    if (crosses_) {
        engine.sectors().link(pick_);
        if (!stream_.minis_.empty()) {
            engine.minis().release(stream_.minis_.front(), stream_.minis_.back(),
                                   static_cast<std::uint32_t>(stream_.minis_.size()));
            stream_.minis_.clear();
        }
    } else if (!pick_.runs.empty() && stream_.is_small()) {
        engine.link_minis(pick_);
        for (const Run& run : pick_.runs) {
            for (std::uint32_t i = 0; i < run.count; ++i) {
                stream_.minis_.push_back(run.first + i);
            }
        }
    } else if (!pick_.runs.empty()) {
        engine.sectors().link(pick_);
    }
    stream_.set_size(new_size_);
}

} // namespace compound_file

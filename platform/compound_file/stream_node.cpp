// Opening, reading, writing and copying of streams. Growing is in stream_growth.cpp, shrinking in
// stream_shrink.cpp.
#include "platform/compound_file/stream_node.h"

#include "platform/base/checked.h"
#include "platform/compound_file/stream_growth.h"

#include <algorithm>
#include <cstring>

namespace compound_file {
namespace {

using platform::Errc;
using platform::Error;

constexpr std::size_t kWindowBytes = std::size_t{64} * 1024;
constexpr std::size_t kFirstReach =
    std::size_t{4} * 1024; // after a jump; doubled while reads go on from there
constexpr std::array<std::uint8_t, kWindowBytes> kZeros{};

} // namespace

ChainedStream::ChainedStream(Engine& engine, EntryId entry)
    : engine_(engine)
    , entry_(entry)
    , size_(engine.directory().at(entry).size) {
    const Sector first = engine.directory().at(entry).first;
    if (is_small()) {
        const MiniTable& minis = engine.minis();
        const std::uint32_t count =
            minis.chain_length(first, (size_ + kMiniBytes - 1) / kMiniBytes);
        Sector at = first;
        for (std::uint32_t i = 0; i < count; ++i, at = minis.next(at)) {
            minis_.push_back(at);
            map_.append(minis.mini_offset(at), kMiniBytes);
        }
        return;
    }
    const Geometry geometry = engine.geometry();
    const SectorTable& sectors = engine.sectors();
    const std::uint32_t count = sectors.chain_length(first, geometry.sectors_for(size_));
    Sector at = first;
    for (std::uint32_t i = 0; i < count; ++i, at = sectors.next(at)) {
        map_.append(geometry.offset(at), geometry.sector_bytes());
    }
}

Sector ChainedStream::first_sector() const {
    if (map_.length() == 0) {
        return kEndOfChain;
    }
    return is_small() ? minis_.front() : engine_.geometry().sector_at(map_.locate(0).file_offset);
}

Sector ChainedStream::last_sector() const {
    if (map_.length() == 0) {
        return kEndOfChain;
    }
    return is_small() ? minis_.back()
                      : engine_.geometry().sector_at(map_.locate(map_.length() - 1).file_offset);
}

std::size_t ChainedStream::read_at(std::uint64_t offset, std::span<std::uint8_t> out) {
    const std::uint64_t inside = offset - window_at_; // huge when in front of the window
    if (inside < window_used_ && out.size() <= window_used_ - inside && !out.empty()) {
        std::memcpy(out.data(), window_.data() + inside, out.size());
        return out.size();
    }
    if (offset >= size_ || out.empty()) {
        return 0;
    }
    if (offset >= available()) {
        throw Error(Errc::read_fault, "read at " + std::to_string(offset) + " of a stream of " +
                                          std::to_string(size_) + " whose sectors end at " +
                                          std::to_string(available()));
    }
    const std::uint64_t most = std::min<std::uint64_t>(out.size(), available() - offset);
    return read_around_window(offset, out.first(static_cast<std::size_t>(most)));
}

std::size_t ChainedStream::read_around_window(std::uint64_t offset, std::span<std::uint8_t> out) {
    std::size_t done = 0;
    while (done < out.size()) {
        const std::uint64_t at = offset + done;
        const std::span<std::uint8_t> rest = out.subspan(done);
        std::uint64_t inside = at - window_at_;
        if (inside >= window_used_ && rest.size() >= kWindowBytes / 2) {
            const std::size_t got = read_directly(at, rest);
            done += got;
            if (got == 0) {
                break;
            }
            continue;
        }
        if (inside >= window_used_) {
            fill_window(at);
            inside = 0;
        }
        if (window_used_ == 0) {
            break;
        }
        const std::size_t count =
            std::min<std::size_t>(rest.size(), window_used_ - static_cast<std::size_t>(inside));
        std::memcpy(rest.data(), window_.data() + inside, count);
        done += count;
    }
    if (done == 0) {
        throw Error(Errc::read_fault,
                    "stream sector behind the end of the file, at stream offset " +
                        std::to_string(offset));
    }
    return done;
}

std::size_t ChainedStream::read_directly(std::uint64_t offset, std::span<std::uint8_t> out) {
    const ChainMap::Place place = map_.locate(offset);
    const std::uint64_t count = std::min<std::uint64_t>(out.size(), place.length);
    return engine_.backing().read_at(place.file_offset, out.first(static_cast<std::size_t>(count)));
}

void ChainedStream::fill_window(std::uint64_t offset) {
    const bool goes_on = offset >= window_at_ && offset - window_at_ <= window_used_ + reach_;
    const std::size_t reach =
        goes_on && reach_ > 0 ? std::min(2 * reach_, kWindowBytes) : kFirstReach;
    drop_window();
    const ChainMap::Place place = map_.locate(offset);
    const std::uint64_t count =
        std::min({std::uint64_t{reach}, place.length, available() - offset});
    window_.resize(std::max(window_.size(), static_cast<std::size_t>(count)));
    const std::size_t got = engine_.backing().read_at(
        place.file_offset, std::span(window_).first(static_cast<std::size_t>(count)));
    window_at_ = offset;
    window_used_ = got;
    reach_ = reach;
}

void ChainedStream::begin_change() {
    engine_.begin_change();
    if (abandoned_) {
        throw Error(Errc::access, "change of an erased stream");
    }
    if (engine_.is_crossed(entry_)) {
        throw Error(Errc::access, "change of a stream that shares sectors with another one");
    }
}

void ChainedStream::put(std::uint64_t offset, std::span<const std::uint8_t> data) {
    std::size_t done = 0;
    while (done < data.size()) {
        const ChainMap::Place place = map_.locate(offset + done);
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(data.size() - done, place.length));
        const std::span<const std::uint8_t> piece = data.subspan(done, count);
        try {
            engine_.backing().write_at(place.file_offset, piece);
        } catch (...) {
            drop_window(); // a part may have been written
            throw;
        }
        patch_window(offset + done, piece);
        done += count;
    }
}

void ChainedStream::patch_window(std::uint64_t offset, std::span<const std::uint8_t> data) {
    const std::uint64_t first = std::max(offset, window_at_);
    const std::uint64_t end = std::min(offset + data.size(), window_at_ + window_used_);
    if (first < end) {
        std::memcpy(window_.data() + (first - window_at_), data.data() + (first - offset),
                    static_cast<std::size_t>(end - first));
    }
}

void ChainedStream::zero(std::uint64_t from, std::uint64_t to, std::uint64_t zero_in_file_from) {
    while (from < to) {
        const ChainMap::Place place = map_.locate(from);
        const std::uint64_t count = std::min(to - from, place.length);
        const std::uint64_t old_in_file =
            place.file_offset < zero_in_file_from
                ? std::min(count, zero_in_file_from - place.file_offset)
                : 0;
        for (std::uint64_t done = 0; done < old_in_file;) {
            const std::uint64_t piece = std::min<std::uint64_t>(kZeros.size(), old_in_file - done);
            engine_.backing().write_at(place.file_offset + done,
                                       std::span(kZeros).first(static_cast<std::size_t>(piece)));
            done += piece;
        }
        from += count;
    }
}

void ChainedStream::write_at(std::uint64_t offset, std::span<const std::uint8_t> data) {
    if (data.empty()) {
        return;
    }
    begin_change();
    const std::uint64_t end = platform::checked_add(offset, data.size());
    if (end > size_) {
        StreamGrowth growth(*this, end);
        growth.zero_up_to(offset);
        put(offset, data);
        growth.commit();
        return;
    }
    if (end > available()) {
        throw Error(Errc::write_fault, "write up to " + std::to_string(end) +
                                           " of a stream whose " + "sectors end at " +
                                           std::to_string(available()));
    }
    put(offset, data);
}

std::uint64_t ChainedStream::copy_range(StreamNode& source, std::uint64_t from, std::uint64_t to,
                                        std::uint64_t count) {
    auto* const other = dynamic_cast<ChainedStream*>(&source);
    if (other == nullptr) {
        throw Error(Errc::invalid_argument, "copy from a stream of another kind");
    }
    if (from >= other->size_ || count == 0) {
        return 0;
    }
    count = std::min(count, other->size_ - from);
    if (from + count > other->available()) {
        throw Error(Errc::read_fault, "copy up to " + std::to_string(from + count) +
                                          " of a stream whose sectors end at " +
                                          std::to_string(other->available()));
    }
    begin_change();
    const std::uint64_t end = platform::checked_add(to, count);
    if (end <= size_) {
        if (end > available()) {
            throw Error(Errc::write_fault, "copy up to " + std::to_string(end) +
                                               " of a stream whose sectors end at " +
                                               std::to_string(available()));
        }
        copy_runs(*other, from, to, count);
        return count;
    }
    StreamGrowth growth(*this, end);
    growth.zero_up_to(to);
    copy_runs(*other, from, to, count);
    growth.commit();
    return count;
}

void ChainedStream::copy_runs(ChainedStream& source, std::uint64_t from, std::uint64_t to,
                              std::uint64_t count) {
    drop_window();
    // Within one stream, towards its end: the last bytes first, as they would be overwritten.
    const bool backward = &source == this && to > from;
    for (std::uint64_t left = count; left > 0;) {
        const std::uint64_t done = count - left;
        const ChainMap::Place in =
            backward ? source.map_.locate_before(from + left) : source.map_.locate(from + done);
        const ChainMap::Place out =
            backward ? map_.locate_before(to + left) : map_.locate(to + done);
        const std::uint64_t run = std::min({left, in.length, out.length});
        const std::uint64_t in_at = in.file_offset + (backward ? in.length - run : 0);
        const std::uint64_t out_at = out.file_offset + (backward ? out.length - run : 0);
        if (engine_.backing().copy_from(source.engine_.backing(), in_at, out_at, run) != run) {
            throw Error(Errc::read_fault, "copy from behind the end of the file");
        }
        left -= run;
    }
}

} // namespace compound_file

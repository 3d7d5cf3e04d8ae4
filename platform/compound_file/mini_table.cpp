// Loading, growing and writing of the mini FAT.
#include "platform/compound_file/mini_table.h"

#include "platform/compound_file/sector_io.h"

#include <algorithm>

namespace compound_file {

void MiniTable::load(Backing& backing, const SectorTable& sectors, const Header& header,
                     Sector first, std::uint64_t size) {
    if (header.mini_fat_sectors > 0) {
        const std::uint32_t length = sectors.chain_length(header.first_mini_fat, sectors.size());
        Sector at = header.first_mini_fat;
        for (std::uint32_t i = 0; i < length; ++i, at = sectors.next(at)) {
            places_.push_back(at);
        }
    }
    bytes::Bytes raw(places_.size() << geometry_.shift());
    for (std::size_t at = 0; at < raw.size(); at += kLinkBytes) {
        bytes::store_u32(raw, at, kEndOfChain);
    }
    read_sectors(backing, geometry_, places_, raw);
    load_links(raw);
    places_written();

    const std::uint64_t needed = geometry_.sectors_for(size);
    const std::uint32_t length = sectors.chain_length(first, needed);
    whole_ = length == needed;
    first_sector_ = length > 0 ? first : kEndOfChain;
    Sector at = first;
    for (std::uint32_t i = 0; i < length; ++i, at = sectors.next(at)) {
        stream_.append(geometry_.offset(at), geometry_.sector_bytes());
    }
    count_present();
}

void MiniTable::count_present() {
    present_ = static_cast<std::uint32_t>(std::min<std::uint64_t>(size(), room() / kMiniBytes));
}

void MiniTable::add_places(const Pick& pick) {
    std::uint32_t added = 0;
    for (const Run& run : pick.runs) {
        for (std::uint32_t i = 0; i < run.count; ++i) {
            places_.push_back(run.first + i);
        }
        added += run.count;
    }
    add_free_links(added * geometry_.links_per_sector());
    count_present();
}

Sector MiniTable::last_sector() const {
    if (room() == 0) {
        return kEndOfChain;
    }
    return geometry_.sector_at(stream_.locate(room() - 1).file_offset);
}

void MiniTable::add_room(const Pick& pick) {
    if (first_sector_ == kEndOfChain) {
        first_sector_ = pick.first();
    }
    for (const Run& run : pick.runs) {
        stream_.append(geometry_.offset(run.first), std::uint64_t{run.count} << geometry_.shift());
    }
    count_present();
}

std::uint64_t MiniTable::mini_offset(Sector mini) const {
    return stream_.locate(std::uint64_t{mini} * kMiniBytes).file_offset;
}

void MiniTable::write_new(Backing& backing) {
    write_table(backing, static_cast<std::uint32_t>(places_known_));
}

void MiniTable::describe(Header& header) const {
    header.first_mini_fat = places_.empty() ? kEndOfChain : places_.front();
    header.mini_fat_sectors = static_cast<std::uint32_t>(places_.size());
}

void MiniTable::write_changed(Backing& backing) {
    write_table(backing, 0);
}

void MiniTable::write_table(Backing& backing, std::uint32_t first_index) {
    std::vector<Placed> changed;
    for (std::uint32_t i = dirty_.next(first_index); i != SectorSet::kNone;
         i = dirty_.next(i + 1)) {
        changed.push_back({places_[i], i});
    }
    write_sectors(
        backing, geometry_, changed,
        [this](std::uint32_t index, std::span<std::uint8_t> out) { store_links(index, out); });
    for (const Placed& written : changed) {
        dirty_.erase(written.index);
    }
}

} // namespace compound_file

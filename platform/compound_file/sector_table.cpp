// Loading, growing and writing of FAT and DIFAT.
#include "platform/compound_file/sector_table.h"

#include "platform/compound_file/sector_io.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>

namespace compound_file {
namespace {

using platform::Errc;
using platform::Error;

// FAT sectors read in one piece: enough to join reads, few enough to stay in the caches.
constexpr std::size_t kSectorsAtOnce = 64;

void require_inside(Sector sector, Sector file_sectors, const char* what) {
    if (sector >= file_sectors) {
        throw Error(Errc::corrupt, std::string(what) + " sector " + std::to_string(sector) +
                                       " of a file of " + std::to_string(file_sectors));
    }
}

void require_distinct(std::vector<Sector> sectors) {
    std::sort(sectors.begin(), sectors.end());
    const auto twice = std::adjacent_find(sectors.begin(), sectors.end());
    if (twice != sectors.end()) {
        throw Error(Errc::corrupt, "FAT sector " + std::to_string(*twice) + " is listed twice");
    }
}

} // namespace

void SectorTable::load(Backing& backing, const Header& header) {
    const Sector file_sectors = geometry_.sectors_in(backing.size());
    load_lists(backing, header, file_sectors);
    require_distinct(fat_sectors_);
    reserve_links(fat_sectors_.size() * geometry_.links_per_sector());
    const std::span<const Sector> all(fat_sectors_);
    bytes::Bytes raw;
    for (std::size_t first = 0; first < all.size(); first += kSectorsAtOnce) {
        const auto piece = all.subspan(first, std::min(kSectorsAtOnce, all.size() - first));
        raw.resize(piece.size() << geometry_.shift());
        // A link that is not there is no free sector: it reads as an end of chain.
        for (std::size_t at = 0; at < raw.size(); at += kLinkBytes) {
            bytes::store_u32(raw, at, kEndOfChain);
        }
        read_sectors(backing, geometry_, piece, raw);
        load_links(raw);
    }
    present_ = std::min(size(), file_sectors);
    lists_written();
}

void SectorTable::load_lists(Backing& backing, const Header& header, Sector file_sectors) {
    const std::size_t expected =
        std::min({header.fat_sectors, file_sectors, kHighestSector / geometry_.links_per_sector()});
    bool ended = false;
    const auto list = [&](Sector sector) {
        ended = ended || sector == kFreeSector || sector == kEndOfChain;
        if (!ended && fat_sectors_.size() < expected) {
            require_inside(sector, file_sectors, "FAT");
            fat_sectors_.push_back(sector);
        }
    };
    std::for_each(header.slots.begin(), header.slots.end(), list);
    bytes::Bytes raw(geometry_.sector_bytes());
    std::unordered_set<Sector> visited;
    Sector at = header.first_difat;
    while (!ended && fat_sectors_.size() < expected && at != kEndOfChain && at != kFreeSector) {
        require_inside(at, file_sectors, "DIFAT");
        if (!visited.insert(at).second) {
            throw Error(Errc::corrupt, "DIFAT sector " + std::to_string(at) + " is linked twice");
        }
        difat_sectors_.push_back(at);
        std::fill(raw.begin(), raw.end(), std::uint8_t{0xFF});
        read_sectors(backing, geometry_, std::span(&at, 1), raw);
        for (std::uint32_t i = 0; i < slots_per_difat(); ++i) {
            list(bytes::load_u32(raw, std::size_t{i} * kLinkBytes));
        }
        at = bytes::load_u32(raw, std::size_t{slots_per_difat()} * kLinkBytes);
    }
}

std::uint32_t SectorTable::difat_sectors_for(std::uint64_t fat_sectors) const {
    if (fat_sectors <= kHeaderSlots) {
        return 0;
    }
    return static_cast<std::uint32_t>((fat_sectors - kHeaderSlots + slots_per_difat() - 1) /
                                      slots_per_difat());
}

std::uint64_t SectorTable::difats_missing(std::uint64_t more_fat_sectors) const {
    const std::uint64_t needed = difat_sectors_for(fat_sectors_.size() + more_fat_sectors);
    return needed - std::min<std::uint64_t>(needed, difat_sectors_.size());
}

Pick SectorTable::pick(Sector last, std::uint32_t count) const {
    Pick pick = pick_free(last, count);
    grow_pick(pick);
    return pick;
}

void SectorTable::grow_pick(Pick& pick) const {
    if (pick.missing == 0) {
        return;
    }
    const std::uint64_t spare = geometry_.version == Version::v4 ? 1 : 0; // the lock sector
    const std::uint64_t links = geometry_.links_per_sector();
    std::uint64_t fats = (pick.missing + links - 1) / links;
    std::uint64_t difats = difats_missing(fats);
    while (pick.missing + fats + difats + spare > fats * links) {
        difats = difats_missing(++fats);
    }
    std::uint64_t at = size();
    const auto take = [&]() {
        at += at == kLockSector ? spare : 0;
        if (at > geometry_.highest()) {
            throw Error(Errc::too_large, "sector " + std::to_string(at) + ", the highest is " +
                                             std::to_string(geometry_.highest()));
        }
        return static_cast<Sector>(at++);
    };
    std::generate_n(std::back_inserter(pick.fat_sectors), fats, take);
    std::generate_n(std::back_inserter(pick.difat_sectors), difats, take);
    for (; pick.missing > 0; --pick.missing) {
        pick.add(take());
    }
}

void SectorTable::link(const Pick& pick) {
    grow_lists(pick);
    link_picked(pick);
    const Sector end = pick.end();
    present_ = std::max(present_, end);
    if (geometry_.version == Version::v4 && end > kLockSector) {
        take_out(kLockSector, kEndOfChain);
    }
}

void SectorTable::grow_lists(const Pick& pick) {
    if (pick.fat_sectors.empty()) {
        return;
    }
    add_free_links(static_cast<std::uint32_t>(pick.fat_sectors.size()) *
                   geometry_.links_per_sector());
    for (const Sector sector : pick.fat_sectors) {
        take_out(sector, kFatSector);
        fat_sectors_.push_back(sector);
    }
    for (const Sector sector : pick.difat_sectors) {
        take_out(sector, kDifatSector);
        difat_sectors_.push_back(sector);
    }
}

void SectorTable::store_difat(std::uint32_t index, std::span<std::uint8_t> out) const {
    const std::size_t first = kHeaderSlots + std::size_t{index} * slots_per_difat();
    for (std::uint32_t i = 0; i < slots_per_difat(); ++i) {
        const bool used = first + i < fat_sectors_.size();
        bytes::store_u32(out, std::size_t{i} * kLinkBytes,
                         used ? fat_sectors_[first + i] : kFreeSector);
    }
    const bool more = std::size_t{index} + 1 < difat_sectors_.size();
    bytes::store_u32(out, std::size_t{slots_per_difat()} * kLinkBytes,
                     more ? difat_sectors_[index + 1] : kEndOfChain);
}

void SectorTable::write_new(Backing& backing) {
    if (!lists_changed()) {
        return;
    }
    write_fat(backing, static_cast<std::uint32_t>(fat_sectors_known_));
    std::vector<Placed> fresh;
    std::vector<Placed> linked;
    const std::size_t first_changed = fat_sectors_known_ <= kHeaderSlots
                                          ? 0
                                          : (fat_sectors_known_ - kHeaderSlots) / slots_per_difat();
    // The last DIFAT sector may be full and change only its link to the next.
    const std::size_t first_written = first_changed > 0 ? first_changed - 1 : 0;
    for (std::size_t i = first_written; i < difat_sectors_.size(); ++i) {
        (i < difat_sectors_known_ ? linked : fresh)
            .push_back({difat_sectors_[i], static_cast<std::uint32_t>(i)});
    }
    const auto fill = [this](std::uint32_t index, std::span<std::uint8_t> out) {
        store_difat(index, out);
    };
    write_sectors(backing, geometry_, fresh, fill);
    write_sectors(backing, geometry_, linked, fill);
}

void SectorTable::describe(Header& header) const {
    header.fat_sectors = static_cast<std::uint32_t>(fat_sectors_.size());
    header.difat_sectors = static_cast<std::uint32_t>(difat_sectors_.size());
    header.first_difat = difat_sectors_.empty() ? kEndOfChain : difat_sectors_.front();
    for (std::size_t i = 0; i < kHeaderSlots; ++i) {
        header.slots[i] = i < fat_sectors_.size() ? fat_sectors_[i] : kFreeSector;
    }
}

void SectorTable::lists_written() {
    fat_sectors_known_ = fat_sectors_.size();
    difat_sectors_known_ = difat_sectors_.size();
}

void SectorTable::write_changed(Backing& backing) {
    write_fat(backing, 0);
}

void SectorTable::write_fat(Backing& backing, std::uint32_t first_index) {
    std::vector<Placed> changed;
    for (std::uint32_t i = dirty_.next(first_index); i != SectorSet::kNone;
         i = dirty_.next(i + 1)) {
        changed.push_back({fat_sectors_[i], i});
    }
    write_sectors(
        backing, geometry_, changed,
        [this](std::uint32_t index, std::span<std::uint8_t> out) { store_links(index, out); });
    for (const Placed& written : changed) {
        dirty_.erase(written.index);
    }
}

} // namespace compound_file

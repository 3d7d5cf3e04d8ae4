// The FAT ([MS-CFB] Compound File FAT Sectors) with the DIFAT that lists its sectors: which sectors
// follow each other, which are free, and where the table itself lies.
//
// Invariants: the FAT is as long as its listed sectors; the FAT and DIFAT sectors that one pick
// adds are the first sectors of the stretch that they cover, so that what was picked stays in one
// run.
#pragma once

#include "platform/compound_file/chain_table.h"
#include "platform/compound_file/header.h"

namespace compound_file {

class SectorTable final : public ChainTable {
  public:
    explicit SectorTable(Geometry geometry)
        : ChainTable(geometry) {}

    // Reads DIFAT and FAT. Throws Errc::corrupt for a list that leaves the file or repeats itself.
    void load(Backing& backing, const Header& header);

    // Picks `count` sectors to go behind `last`, with the growth of the table that they need.
    // Throws Errc::too_large where the format ends.
    Pick pick(Sector last, std::uint32_t count) const;
    // Makes a pick part of its chain. The backing reaches to the pick's end by now.
    void link(const Pick& pick);

    std::uint32_t sector_bytes() const { return geometry_.sector_bytes(); }
    std::uint64_t sectors_for(std::uint64_t bytes) const { return geometry_.sectors_for(bytes); }
    const std::vector<Sector>& fat_sectors() const { return fat_sectors_; }
    const std::vector<Sector>& difat_sectors() const { return difat_sectors_; }

    // Whether FAT sectors were added since write_lists.
    bool lists_changed() const { return fat_sectors_.size() != fat_sectors_known_; }
    // Writes FAT and DIFAT sectors that the file does not refer to yet, then links them to the
    // DIFAT sectors that it does.
    void write_new(Backing& backing);
    // Puts the lists into a header that is about to be written.
    void describe(Header& header) const;
    // Told that this header has been written.
    void lists_written();
    // Writes all changed FAT sectors.
    void write_changed(Backing& backing);

  private:
    bool may_give_out(Sector sector) const override { return geometry_.may_give_out(sector); }
    std::uint32_t slots_per_difat() const { return geometry_.links_per_sector() - 1; }
    std::uint32_t difat_sectors_for(std::uint64_t fat_sectors) const;
    std::uint64_t difats_missing(std::uint64_t more_fat_sectors) const;
    void load_lists(Backing& backing, const Header& header, Sector file_sectors);
    void grow_pick(Pick& pick) const;
    void grow_lists(const Pick& pick);
    void store_difat(std::uint32_t index, std::span<std::uint8_t> out) const;
    void write_fat(Backing& backing, std::uint32_t first_index);

    std::vector<Sector> fat_sectors_;
    std::vector<Sector> difat_sectors_;
    std::size_t fat_sectors_known_ = 0; // that the header in the file refers to
    std::size_t difat_sectors_known_ = 0;
};

} // namespace compound_file

// The mini FAT ([MS-CFB] Compound File Mini FAT Sectors) and the mini stream: chains of 64-byte
// mini sectors inside the stream of the root entry.
//
// Invariants: the mini FAT is as long as its sectors; neither it nor the mini stream ever shrinks;
// sectors of the mini stream do not move while the file is open, so places got from mini_offset
// stay valid when it grows.
#pragma once

#include "platform/compound_file/chain_map.h"
#include "platform/compound_file/sector_table.h"

namespace compound_file {

class MiniTable final : public ChainTable {
  public:
    explicit MiniTable(Geometry geometry)
        : ChainTable(geometry) {}

    // Reads the mini FAT and maps the mini stream, which begins at `first` and claims `size` bytes.
    void load(Backing& backing, const SectorTable& sectors, const Header& header, Sector first,
              std::uint64_t size);

    // Picks `count` mini sectors; table and mini stream may have to grow first (see below).
    Pick pick(Sector last, std::uint32_t count) const { return pick_free(last, count); }
    void link(const Pick& pick) { link_picked(pick); }

    // Sectors of the table itself, in order.
    const std::vector<Sector>& places() const { return places_; }
    Sector last_place() const { return places_.empty() ? kEndOfChain : places_.back(); }
    // Lengthens the table by the sectors of a pick from the FAT.
    void add_places(const Pick& pick);

    // The mini stream: its first and last sector, the bytes its chain has room for.
    Sector first_sector() const { return first_sector_; }
    Sector last_sector() const;
    std::uint64_t room() const { return stream_.length(); }
    // False when the chain is shorter than the mini stream claims; then it cannot grow.
    bool whole() const { return whole_; }
    void add_room(const Pick& pick);
    // Where a mini sector lies in the file; it lies in the room.
    std::uint64_t mini_offset(Sector mini) const;

    bool places_changed() const { return places_.size() != places_known_; }
    // Writes table sectors that the file does not refer to yet.
    void write_new(Backing& backing);
    void describe(Header& header) const;
    void places_written() { places_known_ = places_.size(); }
    void write_changed(Backing& backing);

  private:
    bool may_give_out(Sector) const override { return true; }
    void write_table(Backing& backing, std::uint32_t first_index);
    void count_present();

    std::vector<Sector> places_;
    std::size_t places_known_ = 0; // that the file refers to
    ChainMap stream_;
    Sector first_sector_ = kEndOfChain;
    bool whole_ = true;
};

} // namespace compound_file

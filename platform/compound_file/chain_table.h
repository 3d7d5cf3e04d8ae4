// A table of successor links in memory: what the FAT and the mini FAT have in common. Link n names
// the sector that follows sector n in its chain, or carries a mark.
//
// Invariants: a free sector is in free_ and nowhere else; a sector released since the last flush is
// in quarantine, that is, its link still stands as it does in the file and nobody is given it,
// except that a chain that grows again first takes back its own cut tail. Taking sectors is done in
// two steps, pick (changes nothing) and link (cannot fail but for memory).
#pragma once

#include "platform/base/bytes.h"
#include "platform/compound_file/format.h"
#include "platform/compound_file/sector_set.h"

#include <unordered_map>
#include <vector>

namespace compound_file {

struct Run {
    Sector first = 0;
    std::uint32_t count = 0;
};

// Sectors picked for the end of one chain and not linked yet.
struct Pick {
    Sector last = kEndOfChain;       // what they go behind; kEndOfChain for a new chain
    std::uint32_t reclaimed = 0;     // how many of the first come out of the chain's own cut tail
    std::uint32_t missing = 0;       // how many the table could not serve
    std::vector<Run> runs;           // in chain order
    std::vector<Sector> fat_sectors; // table growth that goes with the pick (FAT only)
    std::vector<Sector> difat_sectors;

    void add(Sector sector);
    Sector first() const { return runs.empty() ? last : runs.front().first; }
    Sector end() const; // one above the highest sector that is named here
};

class ChainTable {
  public:
    explicit ChainTable(Geometry geometry)
        : geometry_(geometry) {}

    std::uint32_t size() const { return static_cast<std::uint32_t>(links_.size()); }
    Sector next(Sector sector) const { return links_[sector]; }
    // Whether the number is that of a sector, not a mark, and the sector is there to be read.
    bool holds(Sector sector) const { return sector < present_; }

    // Sectors of a chain, at most `limit`: up to the first mark, repeat or number out of range.
    // Cost: O(result).
    std::uint32_t chain_length(Sector first, std::uint64_t limit) const;

    std::uint32_t free_count() const { return free_.count(); }
    bool has_quarantine() const { return !cuts_.empty() || !released_.empty(); }
    // How many sectors of its own cut tail wait behind the last sector of a chain.
    std::uint32_t cut_behind(Sector last) const;

    // Takes the `removed` sectors between `new_last` and `old_last` off a chain.
    void cut(Sector old_last, Sector new_last, std::uint32_t removed);
    // Gives up a whole chain of `count` sectors.
    void release(Sector first, Sector last, std::uint32_t count);
    // Ends cut chains and frees all that waits. Cost: O(sectors freed).
    void apply_quarantine();

    // Marks a sector that is in use; changes nothing where it is not marked free.
    void take_out(Sector sector, Sector mark);
    // Counts the links of all sectors behind the last one that is there as free, whatever they say,
    // so that a file grows at its end: a free link far behind it would make a huge file of a small
    // one. Nothing of this is written unless a link nearby changes.
    void free_absent();
    // Ends the chain at a sector in use whose link is a free mark, or the number of a sector that
    // is not there: once the file has grown, that number would be somebody else's sector.
    void end_if_broken(Sector sector);

  protected:
    // Picks out of the own tail and the free sectors: behind `last` if free there, else upward from
    // the lowest.
    Pick pick_free(Sector last, std::uint32_t count) const;
    void link_picked(const Pick& pick);

    void set(Sector sector, Sector value);
    // Room for all links of a file that is being read.
    void reserve_links(std::size_t count) { links_.reserve(count); }
    // Appends table sectors read from a file, or `count` links that are all free.
    void load_links(bytes::View raw);
    void add_free_links(std::uint32_t count);
    // Puts one table sector's links into `out`.
    void store_links(std::uint32_t table_sector, std::span<std::uint8_t> out) const;

    // Decides which numbers may ever be free.
    virtual bool may_give_out(Sector sector) const = 0;

    ~ChainTable() = default;

    Geometry geometry_;
    std::uint32_t present_ = 0;
    SectorSet dirty_; // table sectors with changed links

  private:
    struct Released {
        Sector first;
        std::uint32_t count;
    };
    void pick_own_tail(Pick& pick, std::uint32_t count) const;
    void free_sectors(Sector first, std::uint32_t count);

    std::vector<Sector> links_;
    SectorSet free_;
    std::unordered_map<Sector, std::uint32_t> cuts_; // last kept sector: length of the tail behind
    std::vector<Released> released_;
};

} // namespace compound_file

// The red-black tree of a storage's entries: walking it without trust, inserting into a sound one,
// building it anew. Links and colours live in the entries themselves.
#pragma once

#include "platform/compound_file/directory_entry.h"
#include "platform/compound_file/sector_set.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace compound_file {

// What can be wrong with a tree: something that hides entries, or only its colours.
enum class TreeFault { links, colours };

// Visits the entries below a storage in tree order and reports each with its parent among the
// siblings. A link out of range, to a free entry or to one that is in `visited` counts as no link.
// Everything wrong, colours and order included, is told to `fault` as a sentence. Cost: O(entries
// visited), no recursion.
void walk_siblings(std::span<const Entry> entries, EntryId storage, SectorSet& visited,
                   const std::function<void(EntryId id, EntryId up)>& found,
                   const std::function<void(TreeFault, const std::string&)>& fault);

class SiblingTree {
  public:
    // `touch` is called for every entry whose links or colour change.
    SiblingTree(std::span<Entry> entries, EntryId storage, std::function<void(EntryId)> touch)
        : entries_(entries)
        , storage_(storage)
        , touch_(std::move(touch)) {}

    // Adds an entry to a sound tree. Cost: O(log n), few entries touched.
    void insert(EntryId id);

    // Makes a balanced tree of entries in their order: bottom row red, the rest black.
    void build(std::span<const EntryId> sorted);

  private:
    bool is_red(EntryId id) const { return id != kNoEntry && entries_[id].red; }
    void set_colour(EntryId id, bool red);
    void replace_child(EntryId up, EntryId old_child, EntryId new_child);
    void rotate(EntryId top, bool to_left);
    void repair(EntryId id);
    EntryId build_part(std::span<const EntryId> sorted, EntryId up, unsigned rows_below);

    std::span<Entry> entries_;
    EntryId storage_;
    std::function<void(EntryId)> touch_;
};

} // namespace compound_file

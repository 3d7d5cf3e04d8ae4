// The directory ([MS-CFB] Compound File Directory Sectors): entries, the tree of siblings below
// each storage, and an index of names beside each tree.
//
// Invariants: raw bytes and decoded entries agree; an entry is listed in exactly one storage or in
// none (the root, free entries, and entries that nothing leads to); lookups use the index, so that
// a wrongly ordered tree hides nothing. A tree that was read broken is built anew at its first
// change.
#pragma once

#include "platform/base/bytes.h"
#include "platform/compound_file/directory_entry.h"
#include "platform/compound_file/sector_set.h"

#include <functional>
#include <queue>
#include <set>
#include <span>
#include <string_view>
#include <unordered_map>

namespace compound_file {

class Directory {
  public:
    explicit Directory(Geometry geometry)
        : geometry_(geometry) {}
    Directory(const Directory&) = delete;
    Directory& operator=(const Directory&) = delete;

    // Takes the directory stream, at least one sector. Cost: O(n log n) for n entries.
    void load(bytes::Bytes raw, std::vector<Sector> places);

    // Whether an entry may be named by a caller: the root, or one that is listed in a storage.
    bool exists(EntryId id) const;
    const Entry& at(EntryId id) const { return entries_[id]; }
    EntryInfo info(EntryId id) const;
    EntryId find(EntryId storage, std::u16string_view name) const;
    std::vector<EntryId> children(EntryId storage) const;
    std::uint32_t size() const { return static_cast<std::uint32_t>(entries_.size()); }

    // Changes. Names have been looked at by the caller; insert needs has_free_entry().
    bool has_free_entry() const { return !free_.empty(); }
    EntryId insert(EntryId storage, std::u16string_view name, EntryType type);
    // The entry itself and everything below it, parents first.
    std::vector<EntryId> subtree(EntryId id) const;
    // Erases what subtree() gave.
    void erase(std::span<const EntryId> subtree);
    void rename(EntryId id, std::u16string_view name);
    void set_stream(EntryId id, Sector first, std::uint64_t size);
    void set_class_id(EntryId id, const std::array<std::uint8_t, 16>& class_id);
    void set_state_bits(EntryId id, std::uint32_t bits);
    void set_times(EntryId id, std::uint64_t created, std::uint64_t modified);

    // The directory's own sectors, in order, and growth by one.
    const std::vector<Sector>& places() const { return places_; }
    void add_place(Sector sector);
    bool places_changed() const { return places_.size() != places_known_; }
    void places_written() { places_known_ = places_.size(); }

    // Writes sectors that the file does not refer to yet.
    void write_new(Backing& backing);
    // Writes where the mini stream lies, ahead of the entries that need it to be there.
    void write_root_stream(Backing& backing);
    // Writes all changed sectors, those with new entries first.
    void write_changed(Backing& backing);

  private:
    struct ByKey {
        using is_transparent = void;
        const std::vector<Entry>* entries;
        bool operator()(EntryId a, EntryId b) const {
            return key_less((*entries)[a].key, (*entries)[b].key);
        }
        bool operator()(EntryId a, std::u16string_view b) const {
            return key_less((*entries)[a].key, b);
        }
        bool operator()(std::u16string_view a, EntryId b) const {
            return key_less(a, (*entries)[b].key);
        }
    };
    struct Listing {
        std::set<EntryId, ByKey> names;
        bool broken = false; // the tree broke an invariant when it was read
    };

    Listing& listing(EntryId storage);
    void load_listings();
    void load_listing(EntryId storage, SectorSet& visited, std::vector<EntryId>& storages);
    std::span<std::uint8_t> raw(EntryId id);
    void touch(EntryId id);
    void rebuild(EntryId storage);
    void write_those(Backing& backing, const SectorSet& chosen, std::uint32_t first_index);

    Geometry geometry_;
    bytes::Bytes raw_;
    std::vector<Entry> entries_;
    std::unordered_map<EntryId, Listing> listings_; // of storages that exist
    std::priority_queue<EntryId, std::vector<EntryId>, std::greater<>> free_;
    std::vector<Sector> places_;
    std::size_t places_known_ = 0; // that the file refers to
    SectorSet dirty_;              // directory sectors with changed entries
    SectorSet with_new_entries_;
    bool root_stream_changed_ = false;
};

} // namespace compound_file

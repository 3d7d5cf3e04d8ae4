// Loading, looking up, changing and writing of directory entries.
#include "platform/compound_file/directory.h"

#include "platform/compound_file/sector_io.h"
#include "platform/compound_file/sibling_tree.h"

#include <algorithm>

namespace compound_file {

void Directory::load(bytes::Bytes raw_bytes, std::vector<Sector> places) {
    raw_ = std::move(raw_bytes);
    places_ = std::move(places);
    places_written();
    dirty_.grow(static_cast<std::uint32_t>(places_.size()));
    with_new_entries_.grow(static_cast<std::uint32_t>(places_.size()));
    const auto count = static_cast<EntryId>(raw_.size() / kEntryBytes);
    entries_.reserve(count);
    for (EntryId id = 0; id < count; ++id) {
        Entry entry = decode_entry(raw(id), geometry_.version);
        if (id == kRoot) {
            entry.type = EntryType::root; // whatever it says, entry 0 is the root
        } else if (entry.type == EntryType::free || entry.type == EntryType::root) {
            entry.type = EntryType::free;
            free_.push(id);
        }
        entries_.push_back(std::move(entry));
    }
    load_listings();
}

void Directory::load_listings() {
    SectorSet visited(size());
    visited.insert(kRoot);
    std::vector<EntryId> storages = {kRoot};
    while (!storages.empty()) {
        const EntryId storage = storages.back();
        storages.pop_back();
        load_listing(storage, visited, storages);
    }
}

void Directory::load_listing(EntryId storage, SectorSet& visited, std::vector<EntryId>& storages) {
    Listing& listed = listing(storage);
    const auto found = [&](EntryId id, EntryId up) {
        entries_[id].up = up;
        if (!listed.names.insert(id).second) {
            return; // the first of a name wins; the tree order fault has been told
        }
        entries_[id].storage = storage;
        if (entries_[id].type == EntryType::storage) {
            storages.push_back(id);
        }
    };
    walk_siblings(entries_, storage, visited, found,
                  [&](TreeFault, const std::string&) { listed.broken = true; });
}

Directory::Listing& Directory::listing(EntryId storage) {
    return listings_
        .try_emplace(storage, Listing{std::set<EntryId, ByKey>(ByKey{&entries_}), false})
        .first->second;
}

bool Directory::exists(EntryId id) const {
    return id < entries_.size() && (id == kRoot || entries_[id].storage != kNoEntry);
}

EntryInfo Directory::info(EntryId id) const {
    const bytes::View bytes_of =
        bytes::View(raw_).subspan(std::size_t{id} * kEntryBytes, kEntryBytes);
    const Entry& entry = entries_[id];
    EntryInfo info;
    info.name = decode_name(bytes_of);
    info.type = entry.type;
    info.size = entry.type == EntryType::stream ? entry.size : 0;
    std::copy_n(bytes_of.begin() + kAtClassId, info.class_id.size(), info.class_id.begin());
    info.state_bits = bytes::load_u32(bytes_of, kAtStateBits);
    info.created = load_u64(bytes_of, kAtCreated);
    info.modified = load_u64(bytes_of, kAtModified);
    return info;
}

EntryId Directory::find(EntryId storage, std::u16string_view name) const {
    const auto& names = listings_.at(storage).names;
    const auto found = names.find(std::u16string_view(key_of(name)));
    return found == names.end() ? kNoEntry : *found;
}

std::vector<EntryId> Directory::children(EntryId storage) const {
    const auto& names = listings_.at(storage).names;
    return {names.begin(), names.end()};
}

std::span<std::uint8_t> Directory::raw(EntryId id) {
    return std::span(raw_).subspan(std::size_t{id} * kEntryBytes, kEntryBytes);
}

void Directory::touch(EntryId id) {
    encode_entry(entries_[id], raw(id));
    dirty_.insert(id / geometry_.entries_per_sector());
}

void Directory::rebuild(EntryId storage) {
    Listing& listed = listing(storage);
    const std::vector<EntryId> sorted(listed.names.begin(), listed.names.end());
    SiblingTree(entries_, storage, [this](EntryId id) { touch(id); }).build(sorted);
    listed.broken = false;
}

EntryId Directory::insert(EntryId storage, std::u16string_view name, EntryType type) {
    const EntryId id = free_.top();
    free_.pop();
    Entry& entry = entries_[id];
    entry = Entry{};
    entry.key = key_of(name);
    entry.type = type;
    entry.storage = storage;
    if (type == EntryType::storage) {
        entry.first = 0; // means nothing for a storage and is written as zero
        listing(id);
    }
    encode_free_entry(raw(id));
    encode_name(name, raw(id));
    touch(id);
    with_new_entries_.insert(id / geometry_.entries_per_sector());

    Listing& listed = listing(storage);
    listed.names.insert(id);
    if (listed.broken) {
        rebuild(storage);
    } else {
        SiblingTree(entries_, storage, [this](EntryId changed) { touch(changed); }).insert(id);
    }
    return id;
}

std::vector<EntryId> Directory::subtree(EntryId id) const {
    std::vector<EntryId> all = {id};
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (entries_[all[i]].type == EntryType::storage) {
            const std::vector<EntryId> below = children(all[i]);
            all.insert(all.end(), below.begin(), below.end());
        }
    }
    return all;
}

void Directory::erase(std::span<const EntryId> subtree) {
    const EntryId storage = entries_[subtree.front()].storage;
    listing(storage).names.erase(subtree.front());
    rebuild(storage);
    for (const EntryId id : subtree) {
        listings_.erase(id);
        entries_[id] = Entry{};
        encode_free_entry(raw(id));
        dirty_.insert(id / geometry_.entries_per_sector());
        free_.push(id);
    }
}

void Directory::rename(EntryId id, std::u16string_view name) {
    Listing& listed = listing(entries_[id].storage);
    listed.names.erase(id);
    entries_[id].key = key_of(name);
    listed.names.insert(id);
    encode_name(name, raw(id));
    touch(id);
    rebuild(entries_[id].storage);
}

void Directory::set_stream(EntryId id, Sector first, std::uint64_t size) {
    Entry& entry = entries_[id];
    if (entry.first == first && entry.size == size) {
        return;
    }
    entry.first = first;
    entry.size = size;
    touch(id);
    root_stream_changed_ = root_stream_changed_ || id == kRoot;
}

void Directory::set_class_id(EntryId id, const std::array<std::uint8_t, 16>& class_id) {
    std::copy(class_id.begin(), class_id.end(), raw(id).begin() + kAtClassId);
    touch(id);
}

void Directory::set_state_bits(EntryId id, std::uint32_t bits) {
    bytes::store_u32(raw(id), kAtStateBits, bits);
    touch(id);
}

void Directory::set_times(EntryId id, std::uint64_t created, std::uint64_t modified) {
    store_u64(raw(id), kAtCreated, created);
    store_u64(raw(id), kAtModified, modified);
    touch(id);
}

void Directory::add_place(Sector sector) {
    places_.push_back(sector);
    dirty_.grow(static_cast<std::uint32_t>(places_.size()));
    with_new_entries_.grow(static_cast<std::uint32_t>(places_.size()));
    dirty_.insert(static_cast<std::uint32_t>(places_.size() - 1));
    raw_.resize(places_.size() << geometry_.shift());
    while (entries_.size() < raw_.size() / kEntryBytes) {
        const auto id = static_cast<EntryId>(entries_.size());
        entries_.emplace_back();
        encode_free_entry(raw(id));
        free_.push(id);
    }
}

void Directory::write_new(Backing& backing) {
    write_those(backing, dirty_, static_cast<std::uint32_t>(places_known_));
}

void Directory::write_root_stream(Backing& backing) {
    if (root_stream_changed_) {
        backing.write_at(geometry_.offset(places_.front()) + kAtFirstSector,
                         raw(kRoot).subspan(kAtFirstSector, kStreamFieldBytes));
        root_stream_changed_ = false;
    }
}

void Directory::write_changed(Backing& backing) {
    SectorSet ahead(static_cast<std::uint32_t>(places_.size()));
    for (std::uint32_t i = with_new_entries_.next(0); i != SectorSet::kNone;
         i = with_new_entries_.next(i + 1)) {
        if (dirty_.contains(i)) {
            ahead.insert(i);
        }
    }
    write_those(backing, ahead, 0);
    write_those(backing, dirty_, 0);
    with_new_entries_.clear();
}

void Directory::write_those(Backing& backing, const SectorSet& chosen, std::uint32_t first_index) {
    std::vector<Placed> sectors;
    for (std::uint32_t i = chosen.next(first_index); i != SectorSet::kNone;
         i = chosen.next(i + 1)) {
        sectors.push_back({places_[i], i});
    }
    write_sectors(
        backing, geometry_, sectors, [this](std::uint32_t index, std::span<std::uint8_t> out) {
            const std::size_t at = std::size_t{index} << geometry_.shift();
            std::copy_n(raw_.begin() + static_cast<std::ptrdiff_t>(at), out.size(), out.begin());
        });
    for (const Placed& written : sectors) {
        dirty_.erase(written.index);
    }
}

} // namespace compound_file

// See dictionary.h.
#include "platform/property_set/dictionary.h"

#include "platform/unicode/upcase.h"

#include <algorithm>

namespace property_set {
namespace {

constexpr std::size_t kEntryHeaderSize = 8;
constexpr std::size_t kUnitSize = 2;

} // namespace

bool Dictionary::read_entries(const RawBytes& raw, std::size_t length_unit, bool padded,
                              std::vector<Entry>& entries) {
    bytes::Cursor cursor(raw.view());
    const std::uint32_t count = cursor.u32();
    for (std::uint32_t i = 0; cursor.ok() && i < count; ++i) {
        Entry entry;
        entry.id = cursor.u32();
        const std::uint64_t size = std::uint64_t{cursor.u32()} * length_unit;
        if (!cursor.ok() || size > cursor.remaining()) {
            return false;
        }
        entry.raw = raw.part(cursor.position(), static_cast<std::size_t>(size));
        cursor.skip(entry.raw.size());
        if (padded) {
            // The last entry may end with the bytes that there are.
            cursor.seek(std::min(aligned(cursor.position()), raw.size()));
        }
        entries.push_back(std::move(entry));
    }
    return cursor.ok();
}

bool Dictionary::all_terminated(const std::vector<Entry>& entries) const {
    return std::all_of(entries.begin(), entries.end(), [](const Entry& entry) {
        const bytes::View name = entry.raw.view();
        return name.size() >= kUnitSize && name.size() % kUnitSize == 0 &&
               bytes::load_u16(name, name.size() - kUnitSize) == 0;
    });
}

bool Dictionary::parse(const RawBytes& raw) {
    bool in_order = true;
    if (text_.is_utf16()) {
        in_order = read_entries(raw, kUnitSize, true, entries_) && all_terminated(entries_);
        std::vector<Entry> by_bytes;
        // Some writers count bytes here too.
        if (!in_order && read_entries(raw, 1, true, by_bytes) && all_terminated(by_bytes)) {
            entries_ = std::move(by_bytes);
            in_order = true;
        }
    } else {
        in_order = read_entries(raw, 1, false, entries_);
    }
    for (EntryIndex index = 0; index < entries_.size(); ++index) {
        entries_[index].name = text_.decode(entries_[index].raw.view());
        add_to_indexes(index);
    }
    return in_order;
}

void Dictionary::add_to_indexes(EntryIndex index) {
    const Entry& entry = entries_[index];
    if (!is_ordinary(entry.id)) {
        return;
    }
    by_id_[entry.id].insert(index);
    if (entry.name && !entry.name->empty()) {
        by_key_[key(*entry.name)].insert(index);
    }
}

std::optional<PropertyId> Dictionary::find(std::u16string_view name) const {
    const auto found = by_key_.find(key(name));
    return found == by_key_.end() ? std::nullopt
                                  : std::optional(entries_[*found->second.begin()].id);
}

const std::u16string* Dictionary::name_of(PropertyId id) const {
    const auto found = by_id_.find(id);
    if (found == by_id_.end()) {
        return nullptr;
    }
    const Entry& entry = entries_[*found->second.begin()];
    return entry.name && !entry.name->empty() ? &*entry.name : nullptr;
}

std::u16string Dictionary::key(std::u16string_view name) const {
    std::u16string result(name);
    if (!case_matters_) {
        std::transform(result.begin(), result.end(), result.begin(), unicode::upper);
    }
    return result;
}

// Takes an entry out of the index of names.
void Dictionary::take_name(EntryIndex index) {
    const Entry& entry = entries_[index];
    const auto found = entry.name ? by_key_.find(key(*entry.name)) : by_key_.end();
    if (found != by_key_.end()) {
        found->second.erase(index);
        if (found->second.empty()) {
            by_key_.erase(found);
        }
    }
}

void Dictionary::set_name(PropertyId id, std::u16string_view name, bytes::Bytes encoded) {
    const std::u16string* old_name = name_of(id);
    if (old_name != nullptr && *old_name == name && find(name) == id) {
        return;
    }
    for (auto holder = find(name); holder && *holder != id; holder = find(name)) {
        remove(*holder);
    }
    const auto own = by_id_.find(id);
    EntryIndex index = entries_.size();
    if (own != by_id_.end()) {
        index = *own->second.begin();
        take_name(index);
    } else {
        entries_.emplace_back().id = id;
    }
    entries_[index].raw = RawBytes(std::move(encoded));
    entries_[index].name = name;
    add_to_indexes(index);
    changed_ = true;
}

void Dictionary::remove(PropertyId id) {
    const auto found = by_id_.find(id);
    if (found == by_id_.end()) {
        return;
    }
    for (const EntryIndex index : found->second) {
        take_name(index);
        entries_[index].removed = true;
    }
    by_id_.erase(found);
    changed_ = true;
}

void Dictionary::append_ids(std::vector<PropertyId>& ids) const {
    for (const auto& [id, indexes] : by_id_) {
        ids.push_back(id);
    }
}

bytes::Bytes Dictionary::encode() const {
    const std::size_t length_unit = text_.is_utf16() ? kUnitSize : 1;
    bytes::Bytes out(sizeof(std::uint32_t));
    std::uint32_t count = 0;
    for (const Entry& entry : entries_) {
        if (entry.removed) {
            continue;
        }
        ++count;
        bytes::append_u32(out, entry.id);
        bytes::append_u32(out, static_cast<std::uint32_t>(entry.raw.size() / length_unit));
        bytes::append(out, entry.raw.view());
        if (text_.is_utf16()) {
            align(out);
        }
    }
    align(out);
    bytes::store_u32(out, 0, count);
    return out;
}

} // namespace property_set

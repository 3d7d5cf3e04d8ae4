// See dictionary.h.
#include "platform/property_set/dictionary.h"

#include "platform/unicode/upcase.h"

#include <algorithm>

namespace property_set {
namespace {

constexpr std::size_t kUnitSize = 2;

} // namespace

int Dictionary::ByKey::compare(std::u16string_view a, std::u16string_view b) const {
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        const int difference =
            case_matters ? a[i] - b[i] : unicode::upper(a[i]) - unicode::upper(b[i]);
        if (difference != 0) {
            return difference;
        }
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

bool Dictionary::ByKey::operator()(EntryIndex a, EntryIndex b) const {
    const int difference = compare(name(a), name(b));
    return difference != 0 ? difference < 0 : a < b;
}

Dictionary::Dictionary(SectionText text, bool case_matters)
    : text_(text)
    , case_matters_(case_matters)
    , entries_(std::make_unique<Entries>())
    , by_key_(ByKey{entries_.get(), case_matters}) {}

bool Dictionary::read_entries(const RawBytes& raw, std::size_t length_unit, bool padded,
                              Entries& entries) {
    bytes::Cursor cursor(raw.view());
    const std::uint32_t count = cursor.u32();
    for (std::uint32_t i = 0; cursor.ok() && i < count; ++i) {
        Entry entry;
        entry.id = cursor.u32();
        const std::uint64_t size = std::uint64_t{cursor.u32()} * length_unit;
        if (entries.size() == kMostProperties || !cursor.ok() || size > cursor.remaining()) {
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

bool Dictionary::all_terminated(const Entries& entries) const {
    return std::all_of(entries.begin(), entries.end(), [](const Entry& entry) {
        const bytes::View name = entry.raw.view();
        return name.size() >= kUnitSize && name.size() % kUnitSize == 0 &&
               bytes::load_u16(name, name.size() - kUnitSize) == 0;
    });
}

bool Dictionary::parse(const RawBytes& raw) {
    bool in_order = true;
    if (text_.is_utf16()) {
        in_order = read_entries(raw, kUnitSize, true, *entries_) && all_terminated(*entries_);
        Entries by_bytes;
        // Some writers count bytes here too.
        if (!in_order && read_entries(raw, 1, true, by_bytes) && all_terminated(by_bytes)) {
            *entries_ = std::move(by_bytes);
            in_order = true;
        }
    } else {
        in_order = read_entries(raw, 1, false, *entries_);
    }
    for (EntryIndex index = 0; index < entries_->size(); ++index) {
        Entry& entry = (*entries_)[index];
        entry.name = text_.decode(entry.raw.view());
        add_to_indexes(index);
    }
    return in_order;
}

void Dictionary::add_to_indexes(EntryIndex index) {
    const Entry& entry = (*entries_)[index];
    if (!is_ordinary(entry.id)) {
        return;
    }
    by_id_.emplace(entry.id, index);
    if (entry.name && !entry.name->empty() && first_of(entry.id) == index) {
        by_key_.insert(index);
    }
}

std::optional<Dictionary::EntryIndex> Dictionary::first_of(PropertyId id) const {
    const auto found = by_id_.lower_bound({id, 0});
    return found != by_id_.end() && found->first == id ? std::optional(found->second)
                                                       : std::nullopt;
}

std::optional<PropertyId> Dictionary::find(std::u16string_view name) const {
    const auto found = by_key_.lower_bound(name);
    const bool has_name = found != by_key_.end() && !by_key_.key_comp()(name, *found);
    return has_name ? std::optional((*entries_)[*found].id) : std::nullopt;
}

const std::u16string* Dictionary::name_of(PropertyId id) const {
    const std::optional<EntryIndex> index = first_of(id);
    if (!index) {
        return nullptr;
    }
    const Entry& entry = (*entries_)[*index];
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
    const Entry& entry = (*entries_)[index];
    if (entry.name && !entry.name->empty()) {
        by_key_.erase(index);
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
    const std::optional<EntryIndex> own = first_of(id);
    const auto index = own.value_or(static_cast<EntryIndex>(entries_->size()));
    if (own) {
        take_name(index);
    } else {
        entries_->emplace_back().id = id;
    }
    Entry& entry = (*entries_)[index];
    entry.raw = RawBytes(std::move(encoded));
    entry.name = name;
    add_to_indexes(index);
    changed_ = true;
}

void Dictionary::remove(PropertyId id) {
    while (const std::optional<EntryIndex> index = first_of(id)) {
        take_name(*index);
        (*entries_)[*index].removed = true;
        by_id_.erase({id, *index});
        changed_ = true;
    }
}

void Dictionary::append_ids(std::vector<PropertyId>& ids) const {
    for (const auto& [id, index] : by_id_) {
        ids.push_back(id);
    }
}

bytes::Bytes Dictionary::encode() const {
    const std::size_t length_unit = text_.is_utf16() ? kUnitSize : 1;
    bytes::Bytes out(sizeof(std::uint32_t));
    std::uint32_t count = 0;
    for (const Entry& entry : *entries_) {
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

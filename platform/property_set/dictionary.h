// The dictionary of a section ([MS-OLEPS] Dictionary): property ids and their names.
//
// Entries keep their order and the bytes that they had on disk; only an entry that was renamed or
// added is encoded. An id or a name that stands there twice counts by its first entry, and the
// others stay as they are. Entries for reserved ids are kept but name nothing.
#pragma once

#include "platform/property_set/format.h"
#include "platform/property_set/raw_bytes.h"
#include "platform/property_set/section_text.h"

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace property_set {

class Dictionary {
  public:
    Dictionary(SectionText text, bool case_matters);

    // Reads as many entries as are whole, at most kMostProperties; says whether the dictionary was
    // in order. Called once, on an empty dictionary.
    bool parse(const RawBytes& raw);

    // O(log n). Names that do not convert are never found and read as null.
    std::optional<PropertyId> find(std::u16string_view name) const;
    const std::u16string* name_of(PropertyId id) const;

    // What two names have in common when they count as the same.
    std::u16string key(std::u16string_view name) const;

    // Gives the id its name, in the place of its old one or at the end; another id loses the name.
    // `encoded` is the name as it will stand on disk, terminator included.
    void set_name(PropertyId id, std::u16string_view name, bytes::Bytes encoded);
    void remove(PropertyId id);

    bool changed() const { return changed_; }
    void append_ids(std::vector<PropertyId>& ids) const;

    // The dictionary with padding.
    bytes::Bytes encode() const;

  private:
    struct Entry {
        PropertyId id = 0;
        RawBytes raw;
        std::optional<std::u16string> name;
        bool removed = false;
    };
    using EntryIndex = std::uint32_t;
    using Entries = std::vector<Entry>;

    // Names by their keys, equal ones by index. Keys are made where they are compared: stored ones
    // would take more memory than all the rest.
    struct ByKey {
        using is_transparent = void;
        const Entries* entries;
        bool case_matters;

        std::u16string_view name(EntryIndex index) const { return *(*entries)[index].name; }
        int compare(std::u16string_view a, std::u16string_view b) const;
        bool operator()(EntryIndex a, EntryIndex b) const;
        bool operator()(EntryIndex a, std::u16string_view b) const {
            return compare(name(a), b) < 0;
        }
        bool operator()(std::u16string_view a, EntryIndex b) const {
            return compare(a, name(b)) < 0;
        }
    };

    // Reads entries whose lengths count `length_unit` bytes; false when one does not fit.
    static bool read_entries(const RawBytes& raw, std::size_t length_unit, bool padded,
                             Entries& entries);
    bool all_terminated(const Entries& entries) const;
    // The first entry of an id.
    std::optional<EntryIndex> first_of(PropertyId id) const;
    void add_to_indexes(EntryIndex index);
    void take_name(EntryIndex index);

    SectionText text_;
    bool case_matters_;
    bool changed_ = false;
    std::unique_ptr<Entries> entries_; // stays where it is when the dictionary is moved
    std::set<std::pair<PropertyId, EntryIndex>> by_id_;
    std::set<EntryIndex, ByKey> by_key_;
};

} // namespace property_set

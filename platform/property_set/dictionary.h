// The dictionary of a section ([MS-OLEPS] Dictionary): property ids and their names.
//
// Entries keep their order and the bytes that they had on disk; only an entry that was renamed or
// added is encoded. An id or a name that stands there twice counts by its first entry, and the
// others stay as they are. Entries for reserved ids are kept but name nothing.
#pragma once

#include "platform/property_set/format.h"
#include "platform/property_set/raw_bytes.h"
#include "platform/property_set/section_text.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace property_set {

class Dictionary {
  public:
    Dictionary(SectionText text, bool case_matters)
        : text_(text)
        , case_matters_(case_matters) {}

    // Reads as many entries as are whole; says whether the dictionary was in order. Called once, on
    // an empty dictionary.
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
    using EntryIndex = std::size_t;

    // Reads entries whose lengths count `length_unit` bytes; false when one does not fit.
    static bool read_entries(const RawBytes& raw, std::size_t length_unit, bool padded,
                             std::vector<Entry>& entries);
    bool all_terminated(const std::vector<Entry>& entries) const;
    void add_to_indexes(EntryIndex index);
    void take_name(EntryIndex index);

    SectionText text_;
    bool case_matters_;
    bool changed_ = false;
    std::vector<Entry> entries_;
    std::map<PropertyId, std::set<EntryIndex>> by_id_;
    std::map<std::u16string, std::set<EntryIndex>> by_key_;
};

} // namespace property_set

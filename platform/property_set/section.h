// One section of a property set stream ([MS-OLEPS] PropertySet) opened for reading and changing.
//
// A value's extent reaches to the next offset in use, not to where its type says that it ends, so
// values of any kind are kept whole. A section that did not parse cleanly can be read as far as it
// goes and is never written: every changing call fails with Errc::corrupt. Each changing call
// either does all that it was asked or throws and changes nothing.
#pragma once

#include "platform/property_set/dictionary.h"
#include "platform/property_set/format.h"
#include "platform/property_set/raw_bytes.h"
#include "platform/property_set/section_text.h"
#include "platform/property_set/value.h"

#include <map>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace property_set {

// A property by id or by name.
using PropertyKey = std::variant<PropertyId, std::u16string>;

struct Assignment {
    PropertyKey key;
    Value value;
};

struct Naming {
    PropertyId id = 0;
    std::u16string name;
};

struct PropertyInfo {
    PropertyId id = 0;
    std::optional<std::u16string> name; // none also when the stored one does not convert
    std::uint16_t type = 0;             // as stored, known or not
};

class Section {
  public:
    // Reads a section from its physical extent. `version` is that of the stream;
    // `default_code_page` applies when the section names none.
    static Section parse(const RawBytes& extent, std::uint16_t version,
                         std::uint32_t default_code_page);

    // The bytes of a new section: a code page and, in the user-defined one, a locale and an empty
    // dictionary.
    static bytes::Bytes fresh(const FormatId& format);

    // What is wrong with the section, with the numbers found and allowed; empty for nothing.
    const std::string& damage() const { return damage_; }
    const SectionText& text() const { return text_; }
    bool changed() const { return changed_ || dictionary_.changed(); }

    // The property that a key means, whether or not it has a value; O(log n).
    std::optional<PropertyId> resolve(const PropertyKey& key) const;

    // Nothing when the property has no value. Throws what decode_value throws.
    std::optional<Value> read(const PropertyKey& key) const;

    const std::u16string* name_of(PropertyId id) const { return dictionary_.name_of(id); }

    // The ordinary properties in the order of the pairs.
    std::vector<PropertyInfo> list() const;

    // Sets values; a name that is not there gets the next free id from `first_new_id` upwards. The
    // last value wins where a property is named twice. Throws Errc::invalid_argument for a
    // reserved id and for what does not convert, invalid_name, too_large when ids run out or the
    // section would take more than `most_bytes`.
    void write(std::span<const Assignment> assignments, PropertyId first_new_id,
               std::size_t most_bytes);

    // Removes the property and its name; one that is not there is no failure. Throws
    // Errc::invalid_argument for a reserved id.
    void remove(std::span<const PropertyKey> keys);

    // Names or renames ids. A name that another id holds passes to the new one. Throws
    // Errc::invalid_name for a name that is not 1 to kMaxNameUnits units, holds a terminator or
    // does not convert; invalid_argument for a reserved id.
    void rename(std::span<const Naming> namings);
    void remove_names(std::span<const PropertyId> ids);

    // The section's bytes, anew. Throws Errc::too_large above
    // kMaxLargeStreamSize.
    bytes::Bytes encode() const;

    // Whether both hold the same properties, byte for byte but for padding behind values.
    bool same_content(const Section& other) const;

  private:
    struct Property {
        PropertyId id = 0;
        RawBytes raw;
        std::uint64_t place = 0; // physical order
        bool removed = false;
    };

    explicit Section(SectionText text, bool case_matters)
        : text_(text)
        , dictionary_(text, case_matters) {}

    // A property to be made: its name in both forms, and its value.
    struct NewProperty {
        std::u16string name;
        bytes::Bytes encoded_name;
        RawBytes value;
    };
    using NewValue = std::pair<PropertyId, RawBytes>; // of a property that has an id

    const Property* property(PropertyId id) const;
    bytes::Bytes encode_name(std::u16string_view name) const;
    void require_writable() const;
    void set_value(PropertyId id, RawBytes raw);
    void require_room(std::span<const NewValue> known, std::span<const NewProperty> made,
                      std::size_t most_bytes) const;
    // The properties that encode() writes, in the order of the pairs.
    std::vector<Property> to_write() const;
    static std::uint64_t size_of(std::span<const Property> written);

    SectionText text_;
    Dictionary dictionary_;
    std::string damage_;
    bool changed_ = false;
    std::vector<Property> properties_;
    std::map<PropertyId, std::size_t> by_id_; // not the removed ones
    std::uint64_t next_place_ = 0;
};

} // namespace property_set

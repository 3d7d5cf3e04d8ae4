// Changing a section. Every call first checks and encodes all that it was given, then changes.
#include "platform/property_set/section.h"

#include "platform/base/error.h"
#include "platform/property_set/free_ids.h"

#include <algorithm>
#include <utility>

namespace property_set {
namespace {

using platform::Errc;
using platform::Error;

void require_ordinary(PropertyId id) {
    if (!is_ordinary(id)) {
        throw Error(Errc::invalid_argument, "property id " + std::to_string(id) + " is reserved");
    }
}

} // namespace

void Section::require_writable() const {
    if (!damage_.empty()) {
        throw Error(Errc::corrupt, "property section is not written: " + damage_);
    }
}

bytes::Bytes Section::encode_name(std::u16string_view name) const {
    if (name.empty() || name.size() > kMaxNameUnits ||
        name.find(u'\0') != std::u16string_view::npos) {
        throw Error(Errc::invalid_name, "property name of " + std::to_string(name.size()) +
                                            " units, 1 to " + std::to_string(kMaxNameUnits) +
                                            " without terminator allowed");
    }
    auto encoded = text_.encode(name);
    if (!encoded) {
        throw Error(Errc::invalid_name, "property name that code page " +
                                            std::to_string(text_.code_page()) + " does not hold");
    }
    return std::move(*encoded);
}

void Section::set_value(PropertyId id, RawBytes raw) {
    const auto [found, is_new] = by_id_.emplace(id, properties_.size());
    if (is_new) {
        properties_.push_back({id, std::move(raw), next_place_++});
        changed_ = true;
        return;
    }
    Property& property = properties_[found->second];
    if (!std::ranges::equal(property.raw.view(), raw.view())) {
        property.raw = std::move(raw);
        changed_ = true;
    }
}

void Section::require_room(std::span<const NewValue> known, std::span<const NewProperty> made,
                           std::size_t most_bytes) const {
    std::uint64_t size = size_of(to_write());
    std::uint64_t replaced = 0;
    for (const auto& [id, value] : known) {
        const Property* old = property(id);
        size += old == nullptr ? kPairSize + aligned(value.size()) : aligned(value.size());
        replaced += old == nullptr ? 0 : aligned(old->raw.size());
    }
    for (const NewProperty& added : made) {
        const std::size_t entry_size = kPairSize + aligned(added.encoded_name.size());
        size += kPairSize + aligned(added.value.size()) + entry_size;
    }
    if (size > most_bytes + replaced) {
        throw Error(Errc::too_large, "property section of " + std::to_string(size - replaced) +
                                         " bytes, " + std::to_string(most_bytes) + " allowed");
    }
}

void Section::write(std::span<const Assignment> assignments, PropertyId first_new_id,
                    std::size_t most_bytes) {
    require_writable();
    std::vector<NewValue> known;
    known.reserve(assignments.size());
    std::vector<NewProperty> made;
    std::map<std::u16string, std::size_t> made_by_key;
    for (const Assignment& assignment : assignments) {
        RawBytes value(encode_value(assignment.value, text_));
        if (const std::optional<PropertyId> id = resolve(assignment.key)) {
            require_ordinary(*id);
            known.emplace_back(*id, std::move(value));
            continue;
        }
        const auto& name = std::get<std::u16string>(assignment.key);
        const auto [found, is_new] = made_by_key.emplace(dictionary_.key(name), made.size());
        if (is_new) {
            made.push_back({name, encode_name(name), {}});
        }
        made[found->second].value = std::move(value);
    }
    require_room(known, made, most_bytes);

    std::vector<PropertyId> used;
    dictionary_.append_ids(used);
    for (const auto& [id, index] : by_id_) {
        used.push_back(id);
    }
    for (const auto& [id, value] : known) {
        used.push_back(id);
    }
    const std::vector<PropertyId> ids = free_ids(std::move(used), first_new_id, made.size());

    for (auto& [id, value] : known) {
        set_value(id, std::move(value));
    }
    for (std::size_t i = 0; i < made.size(); ++i) {
        dictionary_.set_name(ids[i], made[i].name, std::move(made[i].encoded_name));
        set_value(ids[i], std::move(made[i].value));
    }
}

void Section::remove(std::span<const PropertyKey> keys) {
    require_writable();
    std::vector<PropertyId> ids;
    for (const PropertyKey& key : keys) {
        if (const std::optional<PropertyId> id = resolve(key)) {
            require_ordinary(*id);
            ids.push_back(*id);
        }
    }
    for (const PropertyId id : ids) {
        dictionary_.remove(id);
        if (const auto found = by_id_.find(id); found != by_id_.end()) {
            properties_[found->second].removed = true;
            by_id_.erase(found);
            changed_ = true;
        }
    }
}

void Section::rename(std::span<const Naming> namings) {
    require_writable();
    std::vector<bytes::Bytes> encoded;
    for (const Naming& naming : namings) {
        require_ordinary(naming.id);
        encoded.push_back(encode_name(naming.name));
    }
    for (std::size_t i = 0; i < namings.size(); ++i) {
        dictionary_.set_name(namings[i].id, namings[i].name, std::move(encoded[i]));
    }
}

void Section::remove_names(std::span<const PropertyId> ids) {
    require_writable();
    std::ranges::for_each(ids, require_ordinary);
    for (const PropertyId id : ids) {
        dictionary_.remove(id);
    }
}

} // namespace property_set

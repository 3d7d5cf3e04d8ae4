// Short forms of what the tests do with a property set.
#pragma once

#include "platform/base/error.h"
#include "platform/property_set/property_set.h"
#include "tests/property_set/raw_stream.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace property_set {

inline PropertySet open_user(bytes::Bytes stream, std::uint32_t default_code_page = 1252) {
    return PropertySet::open(std::move(stream), kUserDefinedFormat, default_code_page);
}

inline Value wide(std::u16string text) {
    return {Type::lpwstr, std::move(text)};
}

inline void put(PropertySet& set, PropertyKey key, Value value) {
    const Assignment assignment{std::move(key), std::move(value)};
    set.write({&assignment, 1}, kFirstOrdinaryId);
}

inline void drop(PropertySet& set, PropertyKey key) {
    set.section().remove({&key, 1});
}

inline void rename(PropertySet& set, PropertyId id, std::u16string name) {
    const Naming naming{id, std::move(name)};
    set.section().rename({&naming, 1});
}

inline std::optional<PropertyId> id_of(const PropertySet& set, std::u16string name) {
    return set.section().resolve(std::move(name));
}

// The names of the listed properties; "" for none.
inline std::vector<std::u16string> names_of(const PropertySet& set) {
    std::vector<std::u16string> names;
    for (const PropertyInfo& info : set.section().list()) {
        names.push_back(info.name.value_or(u""));
    }
    return names;
}

// What the body fails with; nothing when it does not.
template <class Body>
std::optional<platform::Errc> failure_of(Body body) {
    try {
        body();
    } catch (const platform::Error& error) {
        return error.code();
    }
    return std::nullopt;
}

} // namespace property_set

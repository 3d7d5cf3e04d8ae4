// Typed values ([MS-OLEPS] TypedPropertyValue) of the types that callers see. Everything else stays
// raw bytes and never passes through here.
#pragma once

#include "platform/base/bytes.h"
#include "platform/property_set/format.h"
#include "platform/property_set/section_text.h"

#include <cstdint>
#include <string>
#include <variant>

namespace property_set {

struct Clipboard {
    std::uint32_t format = 0;
    bytes::Bytes data;

    friend bool operator==(const Clipboard&, const Clipboard&) = default;
};

// What `data` holds by type: int16 (i2), int32 (i4), bool (boolean), uint32 (ui4), uint64
// (filetime, in 100 ns since 1601), u16string (lpwstr; lpstr that converts), Bytes (blob; the bytes
// of an lpstr that does not convert, without terminator), Clipboard (cf).
struct Value {
    Type type = Type::i4;
    std::variant<std::int16_t, std::int32_t, bool, std::uint32_t, std::uint64_t, std::u16string,
                 bytes::Bytes, Clipboard>
        data;

    friend bool operator==(const Value&, const Value&) = default;
};

// The number in the type field, also of types that cannot be decoded; 0 when there are no bytes.
std::uint16_t type_of(bytes::View raw);

// Throws Errc::unsupported for another type, Errc::corrupt for lengths that the bytes do not hold.
Value decode_value(bytes::View raw, const SectionText& text);

// The bytes with padding. Throws Errc::invalid_argument when a text does not convert or `data` is
// not what the type says.
bytes::Bytes encode_value(const Value& value, const SectionText& text);

// How many bytes a value claims by its type and counts, as far as its first bytes tell; 0 for types
// that cannot be decoded.
std::uint64_t claimed_size(bytes::View raw);

} // namespace property_set

// Property set streams put together and taken apart byte by byte, apart from the engine under test.
#pragma once

#include "platform/base/bytes.h"
#include "platform/property_set/format.h"

#include <map>
#include <string_view>
#include <vector>

namespace raw_stream {

using bytes::Bytes;
using property_set::FormatId;
using property_set::PropertyId;

inline constexpr FormatId kOtherFormat{1, 2, 3, 4};

// Typed values as they stand in a section, padded.
Bytes i2(std::uint16_t value);
Bytes i4(std::uint32_t value);
Bytes lpstr(std::string_view stored); // exactly these bytes
Bytes lpwstr(std::u16string_view text);
// The units and a terminator, little-endian.
Bytes utf16(std::u16string_view text);
Bytes latin(std::string_view text); // the bytes and a terminator

struct Name {
    PropertyId id;
    Bytes bytes;
};
enum class Lengths { as_the_format_says, in_bytes };
Bytes dictionary(std::uint16_t code_page, const std::vector<Name>& names,
                 Lengths lengths = Lengths::as_the_format_says);

struct Property {
    PropertyId id;
    Bytes value;
};
// The values in the order given, the pairs too; an empty value shares the offset of the one before.
Bytes section(const std::vector<Property>& properties);

struct Section {
    FormatId format;
    Bytes content;
};
Bytes stream(const std::vector<Section>& sections, std::uint16_t version = 0);

// The user-defined section behind a document section.
Bytes user_stream(const std::vector<Property>& properties, std::uint16_t version = 0);

// The section of that format taken apart; the stream is known to be in order.
struct Parsed {
    std::vector<PropertyId> order;      // of the pairs
    std::map<PropertyId, Bytes> values; // up to the next offset or the section's end
    Bytes whole;                        // up to the next section or the stream's end
};
Parsed parse(bytes::View stream, const FormatId& format);

} // namespace raw_stream

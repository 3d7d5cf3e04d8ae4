// Names and numbers of the property set format ([MS-OLEPS]).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace property_set {

using PropertyId = std::uint32_t;
using FormatId = std::array<std::uint8_t, 16>; // a GUID in its byte order on disk

// {D5CDD502-2E9C-101B-9397-08002B2CF9AE}
inline constexpr FormatId kDocumentFormat{0x02, 0xD5, 0xCD, 0xD5, 0x9C, 0x2E, 0x1B, 0x10,
                                          0x93, 0x97, 0x08, 0x00, 0x2B, 0x2C, 0xF9, 0xAE};
// {D5CDD505-2E9C-101B-9397-08002B2CF9AE}
inline constexpr FormatId kUserDefinedFormat{0x05, 0xD5, 0xCD, 0xD5, 0x9C, 0x2E, 0x1B, 0x10,
                                             0x93, 0x97, 0x08, 0x00, 0x2B, 0x2C, 0xF9, 0xAE};

// PropertySetStream: the header, followed by a format id and an offset per section.
inline constexpr std::uint16_t kByteOrder = 0xFFFE;
inline constexpr std::uint32_t kSystemId = 0x00020105;
inline constexpr std::size_t kHeaderSize = 28;
inline constexpr std::size_t kSlotSize = 20;
inline constexpr std::uint32_t kMaxSections = 2;

// PropertySet: size and count, followed by an id and an offset per property.
inline constexpr std::size_t kSectionHeaderSize = 8;
inline constexpr std::size_t kPairSize = 8;
inline constexpr std::size_t kTypeSize = 4;

inline constexpr PropertyId kDictionaryId = 0;
inline constexpr PropertyId kCodePageId = 1;
inline constexpr PropertyId kFirstOrdinaryId = 2;
inline constexpr PropertyId kFirstReservedId = 0x80000000;
inline constexpr PropertyId kLocaleId = 0x80000000;
inline constexpr PropertyId kBehaviourId = 0x80000003;

// Property N may have a nameless companion N | kCompanionBit, a string that links it to content.
inline constexpr PropertyId kCompanionBit = 0x01000000;

constexpr bool is_ordinary(PropertyId id) {
    return id >= kFirstOrdinaryId && id < kFirstReservedId;
}

inline constexpr std::size_t kMaxNameUnits = 260;

// The limit of the common implementation on a whole stream: no stream is made to exceed it. One
// that is larger already is still read and written up to the second limit.
inline constexpr std::size_t kMaxStreamSize = 1024 * 1024;
inline constexpr std::size_t kMaxLargeStreamSize = 16 * kMaxStreamSize;

// Properties of one section, and names: a stream of kMaxStreamSize has no room for more, since a
// property takes a pair and a value of at least kSmallestValue bytes.
inline constexpr std::size_t kSmallestValue = 8;
inline constexpr std::size_t kMostProperties = kMaxStreamSize / (kPairSize + kSmallestValue);

// TypedPropertyValue types that can be decoded.
enum class Type : std::uint16_t {
    i2 = 2,
    i4 = 3,
    boolean = 11,
    ui4 = 19,
    lpstr = 30,
    lpwstr = 31,
    filetime = 64,
    blob = 65,
    cf = 71,
};

} // namespace property_set

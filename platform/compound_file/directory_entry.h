// One directory entry ([MS-CFB] Compound File Directory Entry): its 128 bytes, what of them the
// engine works with, and the order of names.
#pragma once

#include "platform/base/bytes.h"
#include "platform/compound_file/format.h"

#include <array>
#include <string>
#include <string_view>

namespace compound_file {

inline constexpr std::size_t kMaxNameUnits = 31;

// Offsets inside an entry that others need than its own reader and writer.
inline constexpr std::size_t kAtClassId = 80;
inline constexpr std::size_t kAtStateBits = 96;
inline constexpr std::size_t kAtCreated = 100;
inline constexpr std::size_t kAtModified = 108;
inline constexpr std::size_t kAtFirstSector = 116;
inline constexpr std::size_t kStreamFieldBytes = 12; // first sector and size

struct Entry {
    std::u16string key; // the name upper-cased
    EntryType type = EntryType::free;
    bool red = false;
    EntryId left = kNoEntry;
    EntryId right = kNoEntry;
    EntryId child = kNoEntry;
    EntryId up = kNoEntry;      // parent among the siblings; kNoEntry at the top
    EntryId storage = kNoEntry; // the storage that lists it
    Sector first = kEndOfChain;
    std::uint64_t size = 0;
};

// The name as compared: every unit upper-cased.
std::u16string key_of(std::u16string_view name);
// The order of siblings: shorter names first, then unit by unit.
bool key_less(std::u16string_view a, std::u16string_view b);

// Throws Errc::invalid_name for an empty or too long name and for / \ : !
void require_valid_name(std::u16string_view name);

// Reads the 128 bytes of an entry. One with an unknown type, or a name of odd or excessive length,
// comes back with the type free.
Entry decode_entry(bytes::View raw, Version version);
std::u16string decode_name(bytes::View raw);
std::uint64_t load_u64(bytes::View raw, std::size_t at);
void store_u64(std::span<std::uint8_t> raw, std::size_t at, std::uint64_t value);

// Writes what the engine works with (all but the name) over the 128 bytes.
void encode_entry(const Entry& entry, std::span<std::uint8_t> raw);
void encode_name(std::u16string_view name, std::span<std::uint8_t> raw);
// All zero but the three links.
void encode_free_entry(std::span<std::uint8_t> raw);

} // namespace compound_file

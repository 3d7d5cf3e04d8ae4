// Decoding and encoding of directory entries; names and their order.
#include "platform/compound_file/directory_entry.h"

#include "platform/unicode/upcase.h"

#include <algorithm>

namespace compound_file {
namespace {

constexpr std::size_t kAtNameBytes = 64;
constexpr std::size_t kAtType = 66;
constexpr std::size_t kAtColour = 67;
constexpr std::size_t kAtLeft = 68;
constexpr std::size_t kAtRight = 72;
constexpr std::size_t kAtChild = 76;
constexpr std::size_t kAtSize = 120;
constexpr std::uint8_t kRed = 0;
constexpr std::uint8_t kBlack = 1;

bool is_known_type(std::uint8_t type) {
    return type == static_cast<std::uint8_t>(EntryType::storage) ||
           type == static_cast<std::uint8_t>(EntryType::stream) ||
           type == static_cast<std::uint8_t>(EntryType::root);
}

bool is_name_length(std::uint16_t bytes_with_terminator) {
    return bytes_with_terminator % 2 == 0 && bytes_with_terminator >= 4 &&
           bytes_with_terminator <= 2 * (kMaxNameUnits + 1);
}

} // namespace

std::u16string key_of(std::u16string_view name) {
    std::u16string key(name);
    std::transform(key.begin(), key.end(), key.begin(), unicode::upper);
    return key;
}

bool key_less(std::u16string_view a, std::u16string_view b) {
    return a.size() != b.size() ? a.size() < b.size() : a < b;
}

void require_valid_name(std::u16string_view name) {
    if (name.empty() || name.size() > kMaxNameUnits) {
        throw platform::Error(platform::Errc::invalid_name,
                              "entry name of " + std::to_string(name.size()) +
                                  " units, allowed are 1 to " + std::to_string(kMaxNameUnits));
    }
    if (name.find_first_of(u"/\\:!") != std::u16string_view::npos) {
        throw platform::Error(platform::Errc::invalid_name, "entry name with one of / \\ : !");
    }
}

std::uint64_t load_u64(bytes::View raw, std::size_t at) {
    return bytes::load_u32(raw, at) | (std::uint64_t{bytes::load_u32(raw, at + 4)} << 32);
}

void store_u64(std::span<std::uint8_t> raw, std::size_t at, std::uint64_t value) {
    bytes::store_u32(raw, at, static_cast<std::uint32_t>(value));
    bytes::store_u32(raw, at + 4, static_cast<std::uint32_t>(value >> 32));
}

std::u16string decode_name(bytes::View raw) {
    const std::uint16_t length = bytes::load_u16(raw, kAtNameBytes);
    std::u16string name;
    if (is_name_length(length)) {
        for (std::size_t at = 0; at + 2 < length; at += 2) {
            name.push_back(static_cast<char16_t>(bytes::load_u16(raw, at)));
        }
    }
    return name;
}

Entry decode_entry(bytes::View raw, Version version) {
    Entry entry;
    if (is_known_type(raw[kAtType]) && is_name_length(bytes::load_u16(raw, kAtNameBytes))) {
        entry.type = static_cast<EntryType>(raw[kAtType]);
    }
    entry.key = key_of(decode_name(raw));
    entry.red = raw[kAtColour] == kRed;
    entry.left = bytes::load_u32(raw, kAtLeft);
    entry.right = bytes::load_u32(raw, kAtRight);
    entry.child = bytes::load_u32(raw, kAtChild);
    entry.first = bytes::load_u32(raw, kAtFirstSector);
    // The upper half of the size is garbage in old v3 files.
    entry.size = version == Version::v3 ? bytes::load_u32(raw, kAtSize) : load_u64(raw, kAtSize);
    return entry;
}

void encode_entry(const Entry& entry, std::span<std::uint8_t> raw) {
    raw[kAtType] = static_cast<std::uint8_t>(entry.type);
    raw[kAtColour] = entry.red ? kRed : kBlack;
    bytes::store_u32(raw, kAtLeft, entry.left);
    bytes::store_u32(raw, kAtRight, entry.right);
    bytes::store_u32(raw, kAtChild, entry.child);
    bytes::store_u32(raw, kAtFirstSector, entry.first);
    store_u64(raw, kAtSize, entry.size);
}

void encode_name(std::u16string_view name, std::span<std::uint8_t> raw) {
    std::fill_n(raw.begin(), kAtNameBytes, std::uint8_t{0});
    for (std::size_t i = 0; i < name.size(); ++i) {
        bytes::store_u16(raw, 2 * i, name[i]);
    }
    bytes::store_u16(raw, kAtNameBytes, static_cast<std::uint16_t>(2 * (name.size() + 1)));
}

void encode_free_entry(std::span<std::uint8_t> raw) {
    std::fill(raw.begin(), raw.end(), std::uint8_t{0});
    bytes::store_u32(raw, kAtLeft, kNoEntry);
    bytes::store_u32(raw, kAtRight, kNoEntry);
    bytes::store_u32(raw, kAtChild, kNoEntry);
}

} // namespace compound_file

// Parsing and writing of the header's fields at their offsets.
#include "platform/compound_file/header.h"

#include <algorithm>

namespace compound_file {
namespace {

constexpr std::array<std::uint8_t, 8> kSignature = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
constexpr std::uint16_t kMinorVersion = 0x3E;
constexpr std::uint16_t kByteOrder = 0xFFFE;
constexpr std::uint16_t kMiniShift = 6;

enum Offset : std::size_t {
    kAtMinor = 24,
    kAtMajor = 26,
    kAtByteOrder = 28,
    kAtShift = 30,
    kAtMiniShift = 32,
    kAtDirectorySectors = 40,
    kAtFatSectors = 44,
    kAtFirstDirectory = 48,
    kAtCutoff = 56,
    kAtFirstMiniFat = 60,
    kAtMiniFatSectors = 64,
    kAtFirstDifat = 68,
    kAtDifatSectors = 72,
    kAtSlots = 76,
};

void require_equal(std::uint32_t found, std::uint32_t allowed, const char* field) {
    if (found != allowed) {
        throw platform::Error(platform::Errc::corrupt, std::string("header: ") + field + " is " +
                                                           std::to_string(found) + ", must be " +
                                                           std::to_string(allowed));
    }
}

Geometry parse_geometry(bytes::View data) {
    const std::uint16_t major = bytes::load_u16(data, kAtMajor);
    if (major != 3 && major != 4) {
        throw platform::Error(platform::Errc::corrupt,
                              "header: version is " + std::to_string(major) + ", must be 3 or 4");
    }
    const Geometry geometry{major == 3 ? Version::v3 : Version::v4};
    require_equal(bytes::load_u16(data, kAtByteOrder), kByteOrder, "byte order");
    require_equal(bytes::load_u16(data, kAtShift), geometry.shift(), "sector shift");
    require_equal(bytes::load_u16(data, kAtMiniShift), kMiniShift, "mini sector shift");
    return geometry;
}

} // namespace

void Header::require_writable() const {
    require_equal(bytes::load_u32(raw, kAtCutoff), kMiniCutoff, "mini stream cutoff");
}

Header Header::parse(bytes::View data) {
    if (data.size() < kSignature.size() ||
        !std::equal(kSignature.begin(), kSignature.end(), data.begin())) {
        throw platform::Error(platform::Errc::not_compound_file, "header: no signature");
    }
    if (data.size() < kHeaderBytes) {
        throw platform::Error(platform::Errc::corrupt,
                              "header: " + std::to_string(data.size()) + " bytes, needs 512");
    }
    Header header;
    std::copy_n(data.begin(), kHeaderBytes, header.raw.begin());
    header.geometry = parse_geometry(data);
    header.directory_sectors = bytes::load_u32(data, kAtDirectorySectors);
    header.fat_sectors = bytes::load_u32(data, kAtFatSectors);
    header.first_directory = bytes::load_u32(data, kAtFirstDirectory);
    header.first_mini_fat = bytes::load_u32(data, kAtFirstMiniFat);
    header.mini_fat_sectors = bytes::load_u32(data, kAtMiniFatSectors);
    header.first_difat = bytes::load_u32(data, kAtFirstDifat);
    header.difat_sectors = bytes::load_u32(data, kAtDifatSectors);
    for (std::size_t i = 0; i < kHeaderSlots; ++i) {
        header.slots[i] = bytes::load_u32(data, kAtSlots + i * kLinkBytes);
    }
    return header;
}

Header Header::fresh(Version version) {
    Header header;
    header.geometry.version = version;
    std::copy(kSignature.begin(), kSignature.end(), header.raw.begin());
    bytes::store_u16(header.raw, kAtMinor, kMinorVersion);
    bytes::store_u16(header.raw, kAtMajor, static_cast<std::uint16_t>(version));
    bytes::store_u16(header.raw, kAtByteOrder, kByteOrder);
    bytes::store_u16(header.raw, kAtShift, static_cast<std::uint16_t>(header.geometry.shift()));
    bytes::store_u16(header.raw, kAtMiniShift, kMiniShift);
    bytes::store_u32(header.raw, kAtCutoff, static_cast<std::uint32_t>(kMiniCutoff));
    header.directory_sectors = version == Version::v4 ? 1 : 0;
    header.fat_sectors = 1;
    header.first_directory = 1;
    header.slots.fill(kFreeSector);
    header.slots[0] = 0;
    return header;
}

Header::Raw Header::encode() const {
    Raw out = raw;
    bytes::store_u32(out, kAtDirectorySectors, directory_sectors);
    bytes::store_u32(out, kAtFatSectors, fat_sectors);
    bytes::store_u32(out, kAtFirstDirectory, first_directory);
    bytes::store_u32(out, kAtFirstMiniFat, first_mini_fat);
    bytes::store_u32(out, kAtMiniFatSectors, mini_fat_sectors);
    bytes::store_u32(out, kAtFirstDifat, first_difat);
    bytes::store_u32(out, kAtDifatSectors, difat_sectors);
    for (std::size_t i = 0; i < kHeaderSlots; ++i) {
        bytes::store_u32(out, kAtSlots + i * kLinkBytes, slots[i]);
    }
    return out;
}

Header read_header(Backing& backing) {
    Header::Raw raw{};
    const std::size_t there = backing.read_at(0, raw);
    return Header::parse(bytes::View(raw).first(there));
}

} // namespace compound_file

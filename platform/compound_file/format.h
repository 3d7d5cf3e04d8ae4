// Numbers of the compound-file format ([MS-CFB]) and the geometry of one file: where its sectors
// lie and how many links a table sector holds. Everything in this folder counts sectors from 0,
// which is the first sector behind the header.
#pragma once

#include "platform/compound_file/compound_file.h"

#include <cstdint>

namespace compound_file {

using Sector = std::uint32_t;

inline constexpr Sector kFreeSector = 0xFFFFFFFF;
inline constexpr Sector kEndOfChain = 0xFFFFFFFE;
inline constexpr Sector kFatSector = 0xFFFFFFFD;
inline constexpr Sector kDifatSector = 0xFFFFFFFC;
inline constexpr Sector kHighestSector = 0xFFFFFFFA;

inline constexpr std::size_t kHeaderBytes = 512;
inline constexpr std::uint32_t kHeaderSlots = 109; // FAT sector numbers in the header
inline constexpr std::uint32_t kLinkBytes = 4;
inline constexpr std::uint32_t kEntryBytes = 128;
inline constexpr std::uint32_t kMiniBytes = 64;
inline constexpr std::uint64_t kMiniCutoff = 4096;    // streams below live in the mini stream
inline constexpr std::uint64_t kV3Limit = 0x80000000; // of the file and of every stream

// The v4 sector that covers file bytes 0x7FFFF000 to 0x7FFFFFFF, where byte-range locks lie.
inline constexpr Sector kLockSector = 0x7FFFE;

struct Geometry {
    Version version = Version::v3;

    unsigned shift() const { return version == Version::v3 ? 9 : 12; }
    std::uint32_t sector_bytes() const { return std::uint32_t{1} << shift(); }
    std::uint32_t links_per_sector() const { return sector_bytes() / kLinkBytes; }
    std::uint32_t entries_per_sector() const { return sector_bytes() / kEntryBytes; }

    std::uint64_t offset(Sector sector) const { return (std::uint64_t{sector} + 1) << shift(); }
    Sector sector_at(std::uint64_t file_offset) const {
        return static_cast<Sector>((file_offset >> shift()) - 1);
    }

    // The highest number that may be given out.
    Sector highest() const {
        return version == Version::v3 ? static_cast<Sector>((kV3Limit >> shift()) - 2)
                                      : kHighestSector;
    }
    bool may_give_out(Sector sector) const {
        return sector <= highest() && (version == Version::v3 || sector != kLockSector);
    }

    // Sectors that begin inside a file of `file_bytes`; the last may be cut short.
    Sector sectors_in(std::uint64_t file_bytes) const {
        const std::uint64_t whole = (file_bytes + sector_bytes() - 1) >> shift();
        const std::uint64_t behind_header = whole > 0 ? whole - 1 : 0;
        return behind_header > kHighestSector ? kHighestSector + 1
                                              : static_cast<Sector>(behind_header);
    }

    // Sectors that `bytes` of a stream need.
    std::uint64_t sectors_for(std::uint64_t bytes) const {
        return (bytes >> shift()) + ((bytes & (sector_bytes() - 1)) != 0 ? 1 : 0);
    }
};

} // namespace compound_file

// The header of a compound file ([MS-CFB] Compound File Header): the first 512 bytes. Holds the raw
// bytes too, so that fields which nobody here understands go back unchanged.
#pragma once

#include "platform/base/bytes.h"
#include "platform/compound_file/format.h"

#include <array>

namespace compound_file {

struct Header {
    using Raw = std::array<std::uint8_t, kHeaderBytes>;

    Raw raw{};
    Geometry geometry;
    std::uint32_t directory_sectors = 0; // v4 only; 0 in v3
    std::uint32_t fat_sectors = 0;
    Sector first_directory = kEndOfChain;
    Sector first_mini_fat = kEndOfChain;
    std::uint32_t mini_fat_sectors = 0;
    Sector first_difat = kEndOfChain;
    std::uint32_t difat_sectors = 0;
    std::array<Sector, kHeaderSlots> slots{};

    // Throws Errc::not_compound_file for another signature, Errc::corrupt for fields that do not
    // fit together.
    static Header parse(bytes::View data);

    // A file with another mini stream cutoff than 4096 is read as if it said so, but never written.
    // Throws Errc::corrupt.
    void require_writable() const;

    // The header of a file whose only sectors are one of FAT (0) and one of directory (1).
    static Header fresh(Version version);

    // The raw bytes with all fields above put in.
    Raw encode() const;
};

// Reads and parses the header of a backing; fails like Header::parse.
Header read_header(Backing& backing);

} // namespace compound_file

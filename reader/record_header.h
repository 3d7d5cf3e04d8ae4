// The 8-byte header of every record ([MS-PPT] RecordHeader, [MS-ODRAW] OfficeArtRecordHeader).
#pragma once

#include "platform/platform.h"

#include <array>
#include <cstdint>

namespace ppt {

inline constexpr std::uint32_t kRecordHeaderSize = 8;

struct RecordHeader {
    std::uint16_t version_and_instance = 0; // low 4 bits: version; high 12 bits: instance
    std::uint16_t type = 0;
    std::uint32_t length = 0; // of the body in bytes

    // The version alone decides; record types never do.
    bool is_container() const { return (version_and_instance & 0xF) == 0xF; }
    std::uint16_t instance() const { return static_cast<std::uint16_t>(version_and_instance >> 4); }
};

using RecordHeaderBytes = std::array<std::uint8_t, kRecordHeaderSize>;

inline RecordHeader decode_record_header(const RecordHeaderBytes& data) {
    return {bytes::load_u16(data, 0), bytes::load_u16(data, 2), bytes::load_u32(data, 4)};
}

inline RecordHeaderBytes encode_record_header(const RecordHeader& header) {
    RecordHeaderBytes data{};
    bytes::store_u16(data, 0, header.version_and_instance);
    bytes::store_u16(data, 2, header.type);
    bytes::store_u32(data, 4, header.length);
    return data;
}

} // namespace ppt

// UTF-16LE text of atoms, between bytes and units. An odd last byte is no text.
#pragma once

#include "platform/platform.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ppt {

inline std::basic_string<WCHAR> utf16_units(bytes::View body) {
    std::basic_string<WCHAR> units(body.size() / 2, WCHAR{0});
    for (std::size_t i = 0; i < units.size(); ++i) {
        units[i] = static_cast<WCHAR>(bytes::load_u16(body, 2 * i));
    }
    return units;
}

inline bytes::Bytes utf16_bytes(std::basic_string_view<WCHAR> units) {
    bytes::Bytes body;
    body.reserve(2 * units.size());
    for (const WCHAR unit : units) {
        bytes::append_u16(body, static_cast<std::uint16_t>(unit));
    }
    return body;
}

} // namespace ppt

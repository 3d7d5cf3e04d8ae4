// The value of the document property `_PID_HLINKS`: the targets of all hyperlinks of the document
// as a vector of typed values ([MS-OSHARED] VecVtHyperlink, VtHyperlink). docs/property-sets.md
// shows the layout.
//
// A hyperlink is four typed integers, the first of them its hash, and two UTF-16 strings: the
// target address and the location inside the target. What is not changed keeps its bytes.
#pragma once

#include "platform/platform.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ppt {

struct HyperlinkEntry {
    // Parts of the value that was read: 32 bytes, and the units that each string counts.
    bytes::View integers;
    bytes::View address;
    bytes::View location;
    // Takes the place of the address when given; without a terminator.
    std::optional<std::basic_string<WCHAR>> new_address;

    // The address up to its terminator or, when that is empty, the location.
    std::basic_string<WCHAR> target() const;
};

struct HyperlinkList {
    std::uint32_t value_count = 0; // 6 for each hyperlink
    std::vector<HyperlinkEntry> entries;
    bytes::View rest; // behind the last entry
    // False when the value ends or stops making sense before its last hyperlink.
    bool complete = false;
};

// Reads the entries as far as they go. The list refers to the value, which must outlive it.
HyperlinkList parse_hyperlink_list(bytes::View value);

// The value with every hash computed anew; a multiple of 4 bytes long.
bytes::Bytes build_hyperlink_list(const HyperlinkList& list);

// The hash of one string of `count` units, its terminator included: the XOR of its
// ASCII-lower-cased characters taken in pairs, over at most 256 characters.
std::uint32_t n_hashHyperlinkString(const WCHAR* units, std::uint32_t count);

} // namespace ppt

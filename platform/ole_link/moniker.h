// Source monikers of linked objects, as they are stored ([MS-OLEDS] MONIKERSTREAM): a file, an
// item, or a file composed with items ([MS-OSHARED] FileMoniker, ItemMoniker, CompositeMoniker).
//
// Monikers of other classes are bytes that nobody looks into. Since none of them says how long it
// is, everything behind the first unknown one in a composite is unknown too, and so is everything
// behind the first kMostParts.
#pragma once

#include "platform/base/bytes.h"

#include <optional>
#include <string>
#include <vector>

namespace ole_link {

inline constexpr std::uint32_t kMostParts = 1000; // of a composite that are looked into

// A text without its terminator: in the ANSI code page of whoever wrote it and, where that was not
// enough, in UTF-16 too.
struct Text {
    std::string ansi;
    std::optional<std::u16string> wide{};
};

// A part of the source, such as a range of cells, behind its delimiter.
struct Item {
    Text delimiter;
    Text name;
    bytes::Bytes stored; // class id and data
};

struct Moniker {
    std::optional<Text> file; // its path
    std::vector<Item> items;
    bytes::Bytes unknown; // stored parts behind the items
    std::uint32_t unknown_count = 0;
};

// Nothing when the first or only part is of another class or is damaged. Cost: linear.
std::optional<Moniker> parse_moniker(bytes::View stored);

// A ready item.
Item make_item(Text delimiter, Text name);

// Class id and data. The file's part is composed anew, items and unknown parts as they are stored.
// One part stands alone, several in a composite.
bytes::Bytes serialise(const Moniker& moniker);

} // namespace ole_link

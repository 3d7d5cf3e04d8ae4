// Where the sections of a property set stream lie ([MS-OLEPS] PropertySetStream), and streams put
// together from sections. The content of sections is not looked at here.
#pragma once

#include "platform/base/bytes.h"
#include "platform/property_set/format.h"

#include <optional>
#include <string>
#include <vector>

namespace property_set {

struct SectionPlace {
    FormatId format{};
    std::size_t offset = 0;
    std::size_t extent =
        0; // to the next section or the end of the stream, whatever its size field says
};

struct StreamLayout {
    std::uint16_t version = 0;
    std::uint32_t system_id = 0;
    FormatId class_id{};
    std::vector<SectionPlace> places; // in the order of the offset table
    std::string damage;               // why the stream is not to be written; empty for no reason

    // The index of the section with this format id.
    std::optional<std::size_t> find(const FormatId& format) const;
};

// Throws Errc::corrupt for anything that is not a property set stream with sections in it.
StreamLayout read_layout(bytes::View stream);

// A stream of new sections, given as format id and bytes.
struct NewSection {
    FormatId format{};
    bytes::Bytes content;
};
bytes::Bytes fresh_stream(const std::vector<NewSection>& sections);

// The stream with one section exchanged. Sections keep their physical order; all other bytes are
// copied, and what moves starts at a multiple of 4.
bytes::Bytes with_section(bytes::View stream, const StreamLayout& layout, std::size_t index,
                          bytes::View content);

// The stream with a section more, in a new slot of the offset table and behind all others.
bytes::Bytes with_added_section(bytes::View stream, const StreamLayout& layout,
                                const NewSection& section);

} // namespace property_set

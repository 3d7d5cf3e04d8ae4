// See stream_layout.h.
#include "platform/property_set/stream_layout.h"

#include "platform/base/checked.h"
#include "platform/base/error.h"
#include "platform/property_set/raw_bytes.h"

#include <algorithm>

namespace property_set {
namespace {

using platform::Errc;
using platform::Error;

constexpr std::size_t kCountAt = 24;
constexpr std::size_t kOffsetInSlot = sizeof(FormatId);
constexpr std::uint16_t kHighestVersion = 1;

FormatId read_guid(bytes::Cursor& cursor) {
    FormatId id{};
    const bytes::View raw = cursor.take(id.size());
    std::copy(raw.begin(), raw.end(), id.begin());
    return id;
}

std::size_t slot_at(std::size_t index) {
    return kHeaderSize + index * kSlotSize;
}

void store_offset(bytes::Bytes& stream, std::size_t index, std::size_t offset) {
    bytes::store_u32(stream, slot_at(index) + kOffsetInSlot, static_cast<std::uint32_t>(offset));
}

// The indexes of the sections as they follow each other in the stream.
std::vector<std::size_t> physical_order(const StreamLayout& layout) {
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < layout.places.size(); ++i) {
        order.push_back(i);
    }
    std::sort(order.begin(), order.end(), [&layout](std::size_t a, std::size_t b) {
        return layout.places[a].offset < layout.places[b].offset;
    });
    return order;
}

void measure_extents(StreamLayout& layout, std::size_t stream_size) {
    for (SectionPlace& place : layout.places) {
        std::size_t end = stream_size;
        for (const SectionPlace& other : layout.places) {
            if (other.offset > place.offset) {
                end = std::min(end, other.offset);
            }
            if (&other != &place && other.offset == place.offset) {
                layout.damage = "two sections at offset " + std::to_string(place.offset);
            }
        }
        place.extent = end - place.offset;
        if (place.extent < kSectionHeaderSize) {
            layout.damage = "section of " + std::to_string(place.extent) + " bytes at offset " +
                            std::to_string(place.offset);
        }
    }
}

void append_header(bytes::Bytes& out, std::uint32_t section_count) {
    bytes::append_u16(out, kByteOrder);
    bytes::append_u16(out, 0); // version
    bytes::append_u32(out, kSystemId);
    out.resize(out.size() + sizeof(FormatId)); // class id
    bytes::append_u32(out, section_count);
}

void append_slot(bytes::Bytes& out, const FormatId& format) {
    bytes::append(out, format);
    bytes::append_u32(out, 0); // the offset, stored when it is known
}

} // namespace

std::optional<std::size_t> StreamLayout::find(const FormatId& format) const {
    const auto found =
        std::find_if(places.begin(), places.end(),
                     [&format](const SectionPlace& place) { return place.format == format; });
    return found == places.end() ? std::nullopt
                                 : std::optional(static_cast<std::size_t>(found - places.begin()));
}

StreamLayout read_layout(bytes::View stream) {
    bytes::Cursor cursor(stream);
    StreamLayout layout;
    const std::uint16_t byte_order = cursor.u16();
    layout.version = cursor.u16();
    layout.system_id = cursor.u32();
    layout.class_id = read_guid(cursor);
    const std::uint32_t count = cursor.u32();
    if (!cursor.ok() || byte_order != kByteOrder || layout.version > kHighestVersion) {
        throw Error(Errc::corrupt, "property set stream of " + std::to_string(stream.size()) +
                                       " bytes, byte order " + std::to_string(byte_order) +
                                       ", version " + std::to_string(layout.version));
    }
    if (count == 0 || count > kMaxSections) {
        throw Error(Errc::corrupt, "property set stream with " + std::to_string(count) +
                                       " sections, 1 or " + std::to_string(kMaxSections) +
                                       " allowed");
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        SectionPlace place;
        place.format = read_guid(cursor);
        place.offset = cursor.u32();
        if (!cursor.ok() || place.offset < slot_at(count) ||
            !platform::fits(place.offset, kSectionHeaderSize, stream.size())) {
            throw Error(Errc::corrupt, "section at offset " + std::to_string(place.offset) +
                                           " of a property set stream of " +
                                           std::to_string(stream.size()) + " bytes");
        }
        layout.places.push_back(place);
    }
    measure_extents(layout, stream.size());
    return layout;
}

bytes::Bytes fresh_stream(const std::vector<NewSection>& sections) {
    bytes::Bytes out;
    append_header(out, static_cast<std::uint32_t>(sections.size()));
    for (const NewSection& section : sections) {
        append_slot(out, section.format);
    }
    for (std::size_t i = 0; i < sections.size(); ++i) {
        store_offset(out, i, out.size());
        bytes::append(out, sections[i].content);
        align(out);
    }
    return out;
}

bytes::Bytes with_section(bytes::View stream, const StreamLayout& layout, std::size_t index,
                          bytes::View content) {
    const std::vector<std::size_t> order = physical_order(layout);
    const bytes::View head = stream.first(layout.places[order.front()].offset);
    bytes::Bytes out(head.begin(), head.end());
    for (const std::size_t i : order) {
        const SectionPlace& place = layout.places[i];
        align(out);
        store_offset(out, i, out.size());
        bytes::append(out, i == index ? content : stream.subspan(place.offset, place.extent));
    }
    return out;
}

bytes::Bytes with_added_section(bytes::View stream, const StreamLayout& layout,
                                const NewSection& section) {
    const std::size_t count = layout.places.size();
    const bytes::View head = stream.first(slot_at(count));
    bytes::Bytes out(head.begin(), head.end());
    append_slot(out, section.format);
    bytes::append(out, stream.subspan(slot_at(count)));
    align(out);
    for (std::size_t i = 0; i < count; ++i) {
        store_offset(out, i, layout.places[i].offset + kSlotSize);
    }
    store_offset(out, count, out.size());
    bytes::append(out, section.content);
    bytes::store_u32(out, kCountAt, static_cast<std::uint32_t>(count + 1));
    return out;
}

} // namespace property_set

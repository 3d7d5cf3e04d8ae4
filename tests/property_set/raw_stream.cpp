#include "tests/property_set/raw_stream.h"

#include <algorithm>

namespace raw_stream {
namespace {

using namespace std::string_view_literals;

void pad(Bytes& out) {
    while (out.size() % 4 != 0) {
        out.push_back(0);
    }
}

Bytes typed(std::uint32_t type, std::uint32_t count_or_value, const Bytes& data = {}) {
    Bytes out;
    bytes::append_u32(out, type);
    bytes::append_u32(out, count_or_value);
    bytes::append(out, data);
    pad(out);
    return out;
}

constexpr std::uint16_t kUtf16 = 1200;

} // namespace

Bytes i2(std::uint16_t value) {
    return typed(2, value);
}
Bytes i4(std::uint32_t value) {
    return typed(3, value);
}

Bytes lpstr(std::string_view stored) {
    return typed(30, static_cast<std::uint32_t>(stored.size()),
                 Bytes(stored.begin(), stored.end()));
}

Bytes lpwstr(std::u16string_view text) {
    return typed(31, static_cast<std::uint32_t>(text.size() + 1), utf16(text));
}

Bytes utf16(std::u16string_view text) {
    Bytes out;
    for (const char16_t unit : text) {
        bytes::append_u16(out, unit);
    }
    bytes::append_u16(out, 0);
    return out;
}

Bytes latin(std::string_view text) {
    Bytes out(text.begin(), text.end());
    out.push_back(0);
    return out;
}

Bytes dictionary(std::uint16_t code_page, const std::vector<Name>& names, Lengths lengths) {
    const bool units = code_page == kUtf16 && lengths == Lengths::as_the_format_says;
    Bytes out;
    bytes::append_u32(out, static_cast<std::uint32_t>(names.size()));
    for (const Name& name : names) {
        bytes::append_u32(out, name.id);
        bytes::append_u32(out, static_cast<std::uint32_t>(name.bytes.size() / (units ? 2 : 1)));
        bytes::append(out, name.bytes);
        if (code_page == kUtf16) {
            pad(out);
        }
    }
    pad(out);
    return out;
}

Bytes section(const std::vector<Property>& properties) {
    Bytes values;
    Bytes out;
    const std::size_t values_at = 8 + 8 * properties.size();
    std::size_t last_at = 0;
    for (const Property& property : properties) {
        if (!property.value.empty()) {
            last_at = values_at + values.size();
        }
        bytes::append_u32(out, property.id);
        bytes::append_u32(out, static_cast<std::uint32_t>(last_at));
        bytes::append(values, property.value);
    }
    Bytes head;
    bytes::append_u32(head, static_cast<std::uint32_t>(values_at + values.size()));
    bytes::append_u32(head, static_cast<std::uint32_t>(properties.size()));
    bytes::append(head, out);
    bytes::append(head, values);
    return head;
}

Bytes stream(const std::vector<Section>& sections, std::uint16_t version) {
    Bytes out;
    bytes::append_u16(out, 0xFFFE);
    bytes::append_u16(out, version);
    bytes::append_u32(out, 0x00020006);
    out.resize(24, 0x5A); // a class id that nobody asked to change
    bytes::append_u32(out, static_cast<std::uint32_t>(sections.size()));
    std::size_t offset = 28 + 20 * sections.size();
    for (const Section& part : sections) {
        bytes::append(out, part.format);
        bytes::append_u32(out, static_cast<std::uint32_t>(offset));
        offset += part.content.size();
    }
    for (const Section& part : sections) {
        bytes::append(out, part.content);
    }
    return out;
}

Bytes user_stream(const std::vector<Property>& properties, std::uint16_t version) {
    return stream(
        {{property_set::kDocumentFormat, section({{1, i2(1252)}, {2, lpstr("made\0"sv)}})},
         {property_set::kUserDefinedFormat, section(properties)}},
        version);
}

Parsed parse(bytes::View stream, const FormatId& format) {
    std::vector<std::size_t> starts{stream.size()};
    std::size_t start = 0;
    for (std::size_t slot = 28; slot < 28 + 20 * bytes::load_u32(stream, 24); slot += 20) {
        starts.push_back(bytes::load_u32(stream, slot + 16));
        if (std::ranges::equal(stream.subspan(slot, 16), format)) {
            start = starts.back();
        }
    }
    std::ranges::sort(starts);
    const std::size_t end = *std::ranges::upper_bound(starts, start);
    const bytes::View whole = stream.subspan(start, end - start);
    Parsed parsed;
    parsed.whole.assign(whole.begin(), whole.end());

    std::vector<std::size_t> offsets{bytes::load_u32(whole, 0), whole.size()};
    const std::uint32_t count = bytes::load_u32(whole, 4);
    for (std::uint32_t i = 0; i < count; ++i) {
        parsed.order.push_back(bytes::load_u32(whole, 8 + 8 * i));
        offsets.push_back(bytes::load_u32(whole, 12 + 8 * i));
    }
    std::ranges::sort(offsets);
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::size_t from = bytes::load_u32(whole, 12 + 8 * i);
        const std::size_t to = *std::ranges::upper_bound(offsets, from);
        const bytes::View value = whole.subspan(from, to - from);
        parsed.values[parsed.order[i]].assign(value.begin(), value.end());
    }
    return parsed;
}

} // namespace raw_stream

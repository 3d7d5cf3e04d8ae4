// See property_stream.h.
#include "tests/support/property_stream.h"

#include <utility>

namespace presentation_builder {

namespace {

using bytes::Bytes;
using bytes::View;

constexpr std::uint32_t kVtI2 = 2;
constexpr std::uint32_t kVtI4 = 3;
constexpr std::uint32_t kVtLpstr = 30;
constexpr std::uint32_t kVtLpwstr = 31;
constexpr std::uint32_t kVtBlob = 65;

constexpr std::uint16_t kUtf16CodePage = 1200;
constexpr std::uint16_t kUtf8CodePage = 65001;

// The format ids of both sections differ in their first field only. That one and the next two are
// stored little-endian, the rest byte by byte.
constexpr std::uint8_t kFormatIdTail[] = {0x9C, 0x2E, 0x1B, 0x10, 0x93, 0x97,
                                          0x08, 0x00, 0x2B, 0x2C, 0xF9, 0xAE};
constexpr std::uint32_t kDocumentFormat = 0xD5CDD502;
constexpr std::uint32_t kUserDefinedFormat = 0xD5CDD505;

void pad(Bytes& out) {
    out.resize((out.size() + 3) / 4 * 4);
}

void append_format_id(Bytes& out, std::uint32_t first) {
    bytes::append_u32(out, first);
    bytes::append(out, kFormatIdTail);
}

Bytes code_page_value(std::uint16_t code_page) {
    Bytes value;
    bytes::append_u32(value, kVtI2);
    bytes::append_u32(value, code_page);
    return value;
}

std::size_t terminator_size(std::uint16_t code_page) {
    return code_page == kUtf16CodePage ? 2 : 1;
}

Bytes lpstr(std::string_view text, std::uint16_t code_page) {
    const std::size_t size = text.size() + terminator_size(code_page);
    Bytes value;
    bytes::append_u32(value, kVtLpstr);
    bytes::append_u32(value, static_cast<std::uint32_t>(size));
    value.insert(value.end(), text.begin(), text.end());
    value.resize(8 + size);
    pad(value);
    return value;
}

void append_wide(Bytes& out, std::u16string_view text) {
    bytes::append_u32(out, kVtLpwstr);
    bytes::append_u32(out, static_cast<std::uint32_t>(text.size() + 1));
    for (const char16_t unit : text) {
        bytes::append_u16(out, static_cast<std::uint16_t>(unit));
    }
    bytes::append_u16(out, 0);
    pad(out);
}

// Units of the basic plane only; surrogates are not joined.
void append_utf8(Bytes& out, char16_t unit) {
    if (unit < 0x80) {
        bytes::append_u8(out, static_cast<std::uint8_t>(unit));
        return;
    }
    if (unit < 0x800) {
        bytes::append_u8(out, static_cast<std::uint8_t>(0xC0 | (unit >> 6)));
    } else {
        bytes::append_u8(out, static_cast<std::uint8_t>(0xE0 | (unit >> 12)));
        bytes::append_u8(out, static_cast<std::uint8_t>(0x80 | ((unit >> 6) & 0x3F)));
    }
    bytes::append_u8(out, static_cast<std::uint8_t>(0x80 | (unit & 0x3F)));
}

Bytes encoded_name(std::u16string_view name, std::uint16_t code_page) {
    Bytes out;
    for (const char16_t unit : name) {
        if (code_page == kUtf16CodePage) {
            bytes::append_u16(out, static_cast<std::uint16_t>(unit));
        } else if (code_page == kUtf8CodePage) {
            append_utf8(out, unit);
        } else {
            bytes::append_u8(out, static_cast<std::uint8_t>(unit));
        }
    }
    out.resize(out.size() + terminator_size(code_page));
    return out;
}

struct Value {
    std::uint32_t id;
    Bytes bytes;
};

Bytes section(const std::vector<Value>& values) {
    Bytes pairs;
    Bytes data;
    const std::size_t first = 8 + 8 * values.size();
    for (const Value& value : values) {
        bytes::append_u32(pairs, value.id);
        bytes::append_u32(pairs, static_cast<std::uint32_t>(first + data.size()));
        bytes::append(data, value.bytes);
    }
    Bytes out;
    bytes::append_u32(out, static_cast<std::uint32_t>(first + data.size()));
    bytes::append_u32(out, static_cast<std::uint32_t>(values.size()));
    bytes::append(out, pairs);
    bytes::append(out, data);
    return out;
}

Bytes document_section() {
    constexpr std::uint16_t kWestern = 1252;
    constexpr std::uint32_t kPresentationFormat = 3;
    return section(
        {{1, code_page_value(kWestern)}, {kPresentationFormat, lpstr("On-screen Show", kWestern)}});
}

} // namespace

PropertyStream::PropertyStream(std::uint16_t code_page)
    : code_page_(code_page) {}

PropertyStream& PropertyStream::text(std::u16string_view name, std::u16string_view value) {
    Bytes stored;
    append_wide(stored, value);
    properties_.push_back({std::u16string(name), std::move(stored)});
    return *this;
}

PropertyStream& PropertyStream::ansi_text(std::u16string_view name, std::string_view value) {
    properties_.push_back({std::u16string(name), lpstr(value, code_page_)});
    return *this;
}

PropertyStream& PropertyStream::blob(std::u16string_view name, View value) {
    Bytes stored;
    bytes::append_u32(stored, kVtBlob);
    bytes::append_u32(stored, static_cast<std::uint32_t>(value.size()));
    bytes::append(stored, value);
    pad(stored);
    properties_.push_back({std::u16string(name), std::move(stored)});
    return *this;
}

PropertyStream& PropertyStream::without_user_defined() {
    has_user_defined_ = false;
    return *this;
}

Bytes PropertyStream::dictionary() const {
    Bytes out;
    bytes::append_u32(out, static_cast<std::uint32_t>(properties_.size()));
    std::uint32_t id = 2;
    for (const Property& property : properties_) {
        const Bytes name = encoded_name(property.name, code_page_);
        const bool wide = code_page_ == kUtf16CodePage;
        bytes::append_u32(out, id++);
        bytes::append_u32(out, static_cast<std::uint32_t>(wide ? name.size() / 2 : name.size()));
        bytes::append(out, name);
        if (wide) {
            pad(out);
        }
    }
    pad(out);
    return out;
}

Bytes PropertyStream::user_defined_section() const {
    std::vector<Value> values{{0, dictionary()}, {1, code_page_value(code_page_)}};
    std::uint32_t id = 2;
    for (const Property& property : properties_) {
        values.push_back({id++, property.value});
    }
    return section(values);
}

Bytes PropertyStream::build() const {
    Bytes out;
    bytes::append_u16(out, 0xFFFE);
    bytes::append_u16(out, 0);
    bytes::append_u32(out, 0x00020105);
    out.resize(out.size() + 16); // class id
    const std::uint32_t sections = has_user_defined_ ? 2 : 1;
    bytes::append_u32(out, sections);
    const Bytes document = document_section();
    const std::uint32_t first = 28 + 20 * sections;
    append_format_id(out, kDocumentFormat);
    bytes::append_u32(out, first);
    if (has_user_defined_) {
        append_format_id(out, kUserDefinedFormat);
        bytes::append_u32(out, first + static_cast<std::uint32_t>(document.size()));
    }
    bytes::append(out, document);
    if (has_user_defined_) {
        bytes::append(out, user_defined_section());
    }
    return out;
}

Bytes hyperlink_list(std::span<const ListedHyperlink> links) {
    Bytes out;
    bytes::append_u32(out, static_cast<std::uint32_t>(6 * links.size()));
    for (const ListedHyperlink& link : links) {
        for (const std::uint32_t integer : link.integers) {
            bytes::append_u32(out, kVtI4);
            bytes::append_u32(out, integer);
        }
        append_wide(out, link.target);
        append_wide(out, link.location);
    }
    return out;
}

} // namespace presentation_builder

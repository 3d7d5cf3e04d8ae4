#include "platform/ole_link/moniker.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace ole_link {

namespace {

using ClassId = std::array<std::uint8_t, 16>;

// {0000030x-0000-0000-C000-000000000046}
constexpr ClassId moniker_class(std::uint8_t number) {
    return {number, 3, 0, 0, 0, 0, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46};
}

constexpr ClassId kFileMoniker = moniker_class(0x03);
constexpr ClassId kItemMoniker = moniker_class(0x04);
constexpr ClassId kCompositeMoniker = moniker_class(0x09);

constexpr std::uint16_t kFileMonikerVersion = 0xDEAD;
constexpr std::uint16_t kNoServer = 0xFFFF;
constexpr std::uint16_t kWidePathKey = 3;
constexpr std::size_t kReservedSize = 20;
constexpr std::size_t kWidePathHead = 6; // size and key

bool is_class(bytes::View class_id, const ClassId& expected) {
    return std::equal(class_id.begin(), class_id.end(), expected.begin(), expected.end());
}

std::string until_zero(bytes::View text) {
    return {text.begin(), std::find(text.begin(), text.end(), std::uint8_t{0})};
}

std::u16string units(bytes::View data) {
    std::u16string text;
    for (std::size_t at = 0; at + 2 <= data.size(); at += 2) {
        text.push_back(static_cast<char16_t>(bytes::load_u16(data, at)));
    }
    return text;
}

void append_units(bytes::Bytes& out, std::u16string_view text) {
    for (const char16_t unit : text) {
        bytes::append_u16(out, static_cast<std::uint16_t>(unit));
    }
}

void append_ansi(bytes::Bytes& out, std::string_view text) {
    out.insert(out.end(), text.begin(), text.end());
    out.push_back(0);
}

// Behind the class id of a file moniker.
std::optional<Text> read_file(bytes::Cursor& cursor) {
    cursor.skip(2); // steps to parent folders
    Text path{until_zero(cursor.take(cursor.u32()))};
    cursor.skip(4 + kReservedSize); // length of the server's name, version
    bytes::Cursor wide(cursor.take(cursor.u32()));
    if (wide.remaining() > 0) {
        const std::size_t size = wide.u32();
        wide.skip(2);
        path.wide = units(wide.take(size));
    }
    return cursor.ok() && wide.ok() ? std::optional(std::move(path)) : std::nullopt;
}

// A text of an item moniker: its size, the ANSI form, then the UTF-16 form where there is one.
Text read_item_text(bytes::Cursor& cursor) {
    const bytes::View stored = cursor.take(cursor.u32());
    Text text{until_zero(stored)};
    const std::size_t ansi_size = std::min(text.ansi.size() + 1, stored.size());
    if (stored.size() > ansi_size) {
        text.wide = units(stored.subspan(ansi_size));
    }
    return text;
}

void append_item_text(bytes::Bytes& out, const Text& text) {
    const std::size_t wide_size = text.wide ? 2 * text.wide->size() : 0;
    bytes::append_u32(out, static_cast<std::uint32_t>(text.ansi.size() + 1 + wide_size));
    append_ansi(out, text.ansi);
    append_units(out, text.wide.value_or(std::u16string()));
}

// Reads one part; false when it is of another class, or damaged, and the cursor stands anywhere.
bool read_part(bytes::Cursor& cursor, Moniker& moniker) {
    const bytes::Cursor start = cursor;
    const std::size_t size = cursor.remaining();
    const bytes::View class_id = cursor.take(sizeof(ClassId));
    const bool is_first = !moniker.file && moniker.items.empty();
    if (is_first && is_class(class_id, kFileMoniker)) {
        moniker.file = read_file(cursor);
        return moniker.file.has_value();
    }
    if (!is_class(class_id, kItemMoniker)) {
        return false;
    }
    Item item;
    item.delimiter = read_item_text(cursor);
    item.name = read_item_text(cursor);
    if (!cursor.ok()) {
        return false;
    }
    const bytes::View stored = bytes::Cursor(start).take(size - cursor.remaining());
    item.stored.assign(stored.begin(), stored.end());
    moniker.items.push_back(std::move(item));
    return true;
}

// False when there are fewer parts than the composite promises; each has a class id.
bool read_parts(bytes::Cursor& cursor, std::uint32_t count, Moniker& moniker) {
    for (std::uint32_t i = 0; i < count; ++i) {
        bytes::Cursor start = cursor;
        if (start.remaining() == 0) {
            return false;
        }
        if (i == kMostParts || !read_part(cursor, moniker)) {
            const bytes::View rest = start.take(start.remaining());
            if (count - i > rest.size() / sizeof(ClassId)) {
                return false;
            }
            moniker.unknown.assign(rest.begin(), rest.end());
            moniker.unknown_count = count - i;
            return true;
        }
    }
    return true;
}

// The server of a UNC path with the two separators before it, in UTF-16 units.
std::uint16_t server_length(const Text& path) {
    const std::u16string text =
        path.wide.value_or(std::u16string(path.ansi.begin(), path.ansi.end()));
    if (!text.starts_with(u"\\\\")) {
        return kNoServer;
    }
    return static_cast<std::uint16_t>(std::min(text.find(u'\\', 2), text.size()));
}

bytes::Bytes file_moniker(const Text& path) {
    bytes::Bytes out(kFileMoniker.begin(), kFileMoniker.end());
    bytes::append_u16(out, 0);
    bytes::append_u32(out, static_cast<std::uint32_t>(path.ansi.size() + 1));
    append_ansi(out, path.ansi);
    bytes::append_u16(out, server_length(path));
    bytes::append_u16(out, kFileMonikerVersion);
    out.resize(out.size() + kReservedSize);
    if (!path.wide) {
        bytes::append_u32(out, 0);
        return out;
    }
    const std::size_t size = 2 * path.wide->size();
    bytes::append_u32(out, static_cast<std::uint32_t>(size + kWidePathHead));
    bytes::append_u32(out, static_cast<std::uint32_t>(size));
    bytes::append_u16(out, kWidePathKey);
    append_units(out, *path.wide);
    return out;
}

} // namespace

std::optional<Moniker> parse_moniker(bytes::View stored) {
    Moniker moniker;
    bytes::Cursor cursor(stored);
    if (is_class(bytes::Cursor(cursor).take(sizeof(ClassId)), kCompositeMoniker)) {
        cursor.skip(sizeof(ClassId));
        if (!read_parts(cursor, cursor.u32(), moniker)) {
            return std::nullopt;
        }
    } else if (!read_part(cursor, moniker)) {
        return std::nullopt;
    }
    const bool understood = moniker.file || !moniker.items.empty();
    return understood ? std::optional(std::move(moniker)) : std::nullopt;
}

Item make_item(Text delimiter, Text name) {
    Item item{std::move(delimiter), std::move(name),
              bytes::Bytes(kItemMoniker.begin(), kItemMoniker.end())};
    append_item_text(item.stored, item.delimiter);
    append_item_text(item.stored, item.name);
    return item;
}

bytes::Bytes serialise(const Moniker& moniker) {
    bytes::Bytes parts;
    if (moniker.file) {
        parts = file_moniker(*moniker.file);
    }
    for (const Item& item : moniker.items) {
        bytes::append(parts, item.stored);
    }
    bytes::append(parts, moniker.unknown);
    const std::size_t count = (moniker.file ? 1 : 0) + moniker.items.size() + moniker.unknown_count;
    if (count <= 1) {
        return parts;
    }
    bytes::Bytes composite(kCompositeMoniker.begin(), kCompositeMoniker.end());
    bytes::append_u32(composite, static_cast<std::uint32_t>(count));
    bytes::append(composite, parts);
    return composite;
}

} // namespace ole_link

#include "linkid/hyperlink_list.h"

#include <algorithm>

namespace ppt {

namespace {

using WideString = std::basic_string<WCHAR>;

constexpr std::uint32_t kValuesPerHyperlink = 6;
constexpr std::size_t kIntegersSize = 32;
constexpr std::size_t kSmallestEntry = kIntegersSize + std::size_t{2} * 8;
constexpr std::size_t kHashOffset = 4; // behind the type of the first integer
constexpr std::uint32_t kWideStringType = VT_LPWSTR;
constexpr std::uint32_t kLongestHashed = 256;

// A typed string: type, count of units, units, padding to 4. False when it is none.
bool read_string(bytes::Cursor& cursor, bytes::View& units) {
    const std::uint32_t type = cursor.u32();
    const std::uint32_t count = cursor.u32();
    if (!cursor.ok() || type != kWideStringType || count > cursor.remaining() / 2) {
        return false;
    }
    units = cursor.take(std::size_t{count} * 2);
    // The padding of the last string may be missing.
    cursor.skip(std::min<std::size_t>(count % 2 == 0 ? 0 : 2, cursor.remaining()));
    return true;
}

WideString text_of(bytes::View units) {
    WideString text;
    for (std::size_t i = 0; i < units.size() && bytes::load_u16(units, i) != 0; i += 2) {
        text.push_back(static_cast<WCHAR>(bytes::load_u16(units, i)));
    }
    return text;
}

void append_string(bytes::Bytes& out, bytes::View units) {
    bytes::append_u32(out, kWideStringType);
    bytes::append_u32(out, static_cast<std::uint32_t>(units.size() / 2));
    bytes::append(out, units);
    if (units.size() % 4 != 0) {
        bytes::append_u16(out, 0);
    }
}

bytes::Bytes terminated_units(const WideString& text) {
    bytes::Bytes units;
    for (const WCHAR unit : text) {
        bytes::append_u16(units, static_cast<std::uint16_t>(unit));
    }
    bytes::append_u16(units, 0);
    return units;
}

std::uint32_t hash(bytes::View units) {
    const WideString text = text_of(units);
    return n_hashHyperlinkString(text.c_str(), static_cast<std::uint32_t>(text.size() + 1));
}

void append_entry(bytes::Bytes& out, const HyperlinkEntry& entry) {
    const bytes::Bytes changed =
        entry.new_address ? terminated_units(*entry.new_address) : bytes::Bytes();
    const bytes::View address = entry.new_address ? bytes::View(changed) : entry.address;
    const std::size_t start = out.size();
    bytes::append(out, entry.integers);
    bytes::store_u32(out, start + kHashOffset, hash(address) ^ hash(entry.location));
    append_string(out, address);
    append_string(out, entry.location);
}

} // namespace

WideString HyperlinkEntry::target() const {
    const WideString text = text_of(address);
    return text.empty() ? text_of(location) : text;
}

HyperlinkList parse_hyperlink_list(bytes::View value) {
    HyperlinkList list;
    bytes::Cursor cursor(value);
    list.value_count = cursor.u32();
    const std::uint32_t count = list.value_count / kValuesPerHyperlink;
    list.entries.reserve(std::min<std::size_t>(count, value.size() / kSmallestEntry));
    while (cursor.ok() && list.entries.size() < count) {
        HyperlinkEntry entry;
        entry.integers = cursor.take(kIntegersSize);
        if (!cursor.ok() || !read_string(cursor, entry.address) ||
            !read_string(cursor, entry.location)) {
            return list;
        }
        list.entries.push_back(std::move(entry));
    }
    list.complete = cursor.ok();
    list.rest = value.subspan(cursor.position());
    return list;
}

bytes::Bytes build_hyperlink_list(const HyperlinkList& list) {
    bytes::Bytes out;
    bytes::append_u32(out, list.value_count);
    for (const HyperlinkEntry& entry : list.entries) {
        append_entry(out, entry);
    }
    bytes::append(out, list.rest);
    out.resize((out.size() + 3) / 4 * 4);
    return out;
}

std::uint32_t n_hashHyperlinkString(const WCHAR* units, std::uint32_t count) {
    WideString text(units, std::min(count, kLongestHashed));
    text.resize(std::char_traits<WCHAR>::length(text.c_str()));
    for (WCHAR& unit : text) {
        if (unit >= WIDE('A') && unit <= WIDE('Z')) {
            unit = static_cast<WCHAR>(unit + (WIDE('a') - WIDE('A')));
        }
    }
    std::uint32_t hash = 0;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        // c_str() ends with a zero, which is the high half for an odd length.
        hash ^= static_cast<std::uint32_t>(text.c_str()[i]) |
                (static_cast<std::uint32_t>(text.c_str()[i + 1]) << 16);
    }
    return hash;
}

} // namespace ppt

// See value.h.
#include "platform/property_set/value.h"

#include "platform/base/error.h"
#include "platform/property_set/raw_bytes.h"

#include <algorithm>
#include <limits>

namespace property_set {
namespace {

using platform::Errc;
using platform::Error;

constexpr std::uint16_t kTrue = 0xFFFF;
constexpr std::size_t kLengthSize = 4;
constexpr std::size_t kUnitSize = 2;
constexpr std::size_t kFormatTagSize = 4;

// The data behind a length field that counts items of `item_size` bytes.
bytes::View counted(bytes::Cursor& cursor, std::size_t item_size) {
    const std::uint64_t wanted = std::uint64_t{cursor.u32()} * item_size;
    if (wanted > cursor.remaining()) {
        throw Error(Errc::corrupt, "property value: " + std::to_string(wanted) + " bytes stated, " +
                                       std::to_string(cursor.remaining()) + " there");
    }
    return cursor.take(static_cast<std::size_t>(wanted));
}

Value decode_lpstr(bytes::View raw, const SectionText& text) {
    if (auto decoded = text.decode(raw)) {
        return {Type::lpstr, std::move(*decoded)};
    }
    const auto terminator = std::find(raw.begin(), raw.end(), std::uint8_t{0});
    return {Type::lpstr, bytes::Bytes(raw.begin(), terminator)};
}

Value decode_clipboard(bytes::View raw) {
    bytes::Cursor cursor(raw);
    Clipboard clipboard;
    clipboard.format = cursor.u32();
    if (!cursor.ok()) {
        throw Error(Errc::corrupt, "clipboard value: " + std::to_string(raw.size()) +
                                       " bytes, no room for the format tag");
    }
    const bytes::View data = cursor.take(cursor.remaining());
    clipboard.data.assign(data.begin(), data.end());
    return {Type::cf, std::move(clipboard)};
}

Value decode_typed(Type type, bytes::Cursor& cursor, const SectionText& text) {
    switch (type) {
    case Type::i2:
        return {type, static_cast<std::int16_t>(cursor.u16())};
    case Type::i4:
        return {type, cursor.i32()};
    case Type::boolean:
        return {type, cursor.u16() != 0};
    case Type::ui4:
        return {type, cursor.u32()};
    case Type::filetime:
        return {type, cursor.u64()};
    case Type::lpstr:
        return decode_lpstr(counted(cursor, 1), text);
    case Type::lpwstr:
        return {type, *SectionText(1200).decode(counted(cursor, kUnitSize))};
    case Type::blob: {
        const bytes::View data = counted(cursor, 1);
        return {type, bytes::Bytes(data.begin(), data.end())};
    }
    case Type::cf:
        return decode_clipboard(counted(cursor, 1));
    }
    throw Error(Errc::unsupported,
                "property value of type " + std::to_string(static_cast<std::uint16_t>(type)));
}

void append_counted(bytes::Bytes& out, bytes::View data, std::size_t item_size) {
    bytes::append_u32(out, static_cast<std::uint32_t>(data.size() / item_size));
    bytes::append(out, data);
}

bytes::Bytes encode_text(const std::u16string& value, const SectionText& text) {
    auto encoded = text.encode(value);
    if (!encoded) {
        throw Error(Errc::invalid_argument,
                    "text that code page " + std::to_string(text.code_page()) + " does not hold");
    }
    return std::move(*encoded);
}

void append_lpstr(bytes::Bytes& out, const Value& value, const SectionText& text) {
    if (const auto* raw = std::get_if<bytes::Bytes>(&value.data)) {
        bytes::Bytes terminated = *raw;
        terminated.push_back(0);
        append_counted(out, terminated, 1);
    } else {
        append_counted(out, encode_text(std::get<std::u16string>(value.data), text), 1);
    }
}

void append_data(bytes::Bytes& out, const Value& value, const SectionText& text) {
    switch (value.type) {
    case Type::i2:
        return bytes::append_u16(out,
                                 static_cast<std::uint16_t>(std::get<std::int16_t>(value.data)));
    case Type::i4:
        return bytes::append_u32(out,
                                 static_cast<std::uint32_t>(std::get<std::int32_t>(value.data)));
    case Type::boolean:
        return bytes::append_u16(out, std::get<bool>(value.data) ? kTrue : std::uint16_t{0});
    case Type::ui4:
        return bytes::append_u32(out, std::get<std::uint32_t>(value.data));
    case Type::filetime:
        return bytes::append_u64(out, std::get<std::uint64_t>(value.data));
    case Type::lpstr:
        return append_lpstr(out, value, text);
    case Type::lpwstr:
        return append_counted(
            out, encode_text(std::get<std::u16string>(value.data), SectionText(1200)), kUnitSize);
    case Type::blob:
        return append_counted(out, std::get<bytes::Bytes>(value.data), 1);
    case Type::cf: {
        const auto& clipboard = std::get<Clipboard>(value.data);
        bytes::append_u32(out, static_cast<std::uint32_t>(clipboard.data.size() + kFormatTagSize));
        bytes::append_u32(out, clipboard.format);
        return bytes::append(out, clipboard.data);
    }
    }
    throw Error(Errc::invalid_argument,
                "property value of type " + std::to_string(static_cast<std::uint16_t>(value.type)));
}

} // namespace

std::uint16_t type_of(bytes::View raw) {
    return bytes::Cursor(raw).u16();
}

Value decode_value(bytes::View raw, const SectionText& text) {
    bytes::Cursor cursor(raw);
    const auto type = static_cast<Type>(cursor.u16());
    cursor.skip(kTypeSize - sizeof(std::uint16_t));
    Value value = decode_typed(type, cursor, text);
    if (!cursor.ok()) {
        throw Error(Errc::corrupt, "property value of type " +
                                       std::to_string(static_cast<std::uint16_t>(type)) +
                                       " cut off at " + std::to_string(raw.size()) + " bytes");
    }
    return value;
}

bytes::Bytes encode_value(const Value& value, const SectionText& text) {
    bytes::Bytes out;
    bytes::append_u32(out, static_cast<std::uint16_t>(value.type));
    try {
        append_data(out, value, text);
    } catch (const std::bad_variant_access&) {
        throw Error(Errc::invalid_argument,
                    "data that does not go with property type " +
                        std::to_string(static_cast<std::uint16_t>(value.type)));
    }
    align(out);
    return out;
}

std::uint64_t claimed_size(bytes::View raw) {
    bytes::Cursor cursor(raw);
    const auto type = static_cast<Type>(cursor.u16());
    cursor.skip(kTypeSize - sizeof(std::uint16_t));
    switch (type) {
    case Type::i2:
    case Type::i4:
    case Type::boolean:
    case Type::ui4:
        return kTypeSize + sizeof(std::uint32_t);
    case Type::filetime:
        return kTypeSize + sizeof(std::uint64_t);
    case Type::lpstr:
    case Type::blob:
    case Type::cf:
        return kTypeSize + kLengthSize + std::uint64_t{cursor.u32()};
    case Type::lpwstr:
        return kTypeSize + kLengthSize + std::uint64_t{cursor.u32()} * kUnitSize;
    }
    return 0;
}

} // namespace property_set

// See property_variant.h.
#include "platform/adapters/property_variant.h"

#include "platform/adapters/statstg.h"
#include "platform/base/error.h"
#include "platform/code_page/code_page.h"
#include "platform/platform.h"

#include <cstring>
#include <memory>
#include <new>
#include <string>

namespace platform {
namespace {

using property_set::Type;
using property_set::Value;

constexpr std::int16_t kVariantTrue = -1;
constexpr ULONG kFormatTagSize = 4;

// A copy from CoTaskMemAlloc with `extra` zero bytes behind it.
BYTE* copy_of(bytes::View data, std::size_t extra) {
    auto* copy = static_cast<BYTE*>(CoTaskMemAlloc(data.size() + extra));
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    std::copy(data.begin(), data.end(), copy);
    std::memset(copy + data.size(), 0, extra);
    return copy;
}

char* ansi_copy(const Value& value) {
    const auto* text = std::get_if<std::u16string>(&value.data);
    const auto encoded = text != nullptr ? code_page::encode_lossy(GetACP(), *text)
                                         : std::optional(std::get<bytes::Bytes>(value.data));
    return reinterpret_cast<char*>(copy_of(encoded.value_or(bytes::Bytes{}), 1));
}

CLIPDATA* clipboard_copy(const property_set::Clipboard& clipboard) {
    const auto release = [](CLIPDATA* data) { CoTaskMemFree(data); };
    std::unique_ptr<CLIPDATA, decltype(release)> copy(
        static_cast<CLIPDATA*>(CoTaskMemAlloc(sizeof(CLIPDATA))));
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    copy->cbSize = static_cast<ULONG>(clipboard.data.size()) + kFormatTagSize;
    copy->ulClipFmt = static_cast<LONG>(clipboard.format);
    copy->pClipData = copy_of(clipboard.data, 0);
    return copy.release();
}

Value ansi_value(const char* text) {
    const std::string_view chars(text);
    const auto decoded = code_page::decode(
        GetACP(), {reinterpret_cast<const std::uint8_t*>(chars.data()), chars.size()});
    if (!decoded) {
        throw Error(Errc::invalid_argument,
                    "property text that is not of code page " + std::to_string(GetACP()));
    }
    return {Type::lpstr, *decoded};
}

Value clipboard_value(const CLIPDATA& data) {
    if (data.cbSize < kFormatTagSize) {
        throw Error(Errc::invalid_argument, "clipboard property of " + std::to_string(data.cbSize) +
                                                " bytes, " + std::to_string(kFormatTagSize) +
                                                " at least");
    }
    property_set::Clipboard clipboard;
    clipboard.format = static_cast<std::uint32_t>(data.ulClipFmt);
    clipboard.data.assign(data.pClipData, data.pClipData + (data.cbSize - kFormatTagSize));
    return {Type::cf, std::move(clipboard)};
}

template <class Pointer>
Pointer not_null(Pointer pointer) {
    if (pointer == nullptr) {
        throw Error(Errc::invalid_argument, "property value without data");
    }
    return pointer;
}

} // namespace

PROPVARIANT variant_of(const Value& value) {
    PROPVARIANT variant{};
    variant.vt = static_cast<VARTYPE>(value.type);
    switch (value.type) {
    case Type::i2:
        variant.iVal = std::get<std::int16_t>(value.data);
        break;
    case Type::i4:
        variant.lVal = std::get<std::int32_t>(value.data);
        break;
    case Type::boolean:
        variant.boolVal = std::get<bool>(value.data) ? kVariantTrue : std::int16_t{0};
        break;
    case Type::ui4:
        variant.ulVal = std::get<std::uint32_t>(value.data);
        break;
    case Type::filetime:
        variant.filetime = filetime_of(std::get<std::uint64_t>(value.data));
        break;
    case Type::lpstr:
        variant.pszVal = ansi_copy(value);
        break;
    case Type::lpwstr:
        variant.pwszVal = task_memory_copy(std::get<std::u16string>(value.data));
        break;
    case Type::blob: {
        const auto& data = std::get<bytes::Bytes>(value.data);
        variant.blob = {static_cast<ULONG>(data.size()), copy_of(data, 0)};
        break;
    }
    case Type::cf:
        variant.pclipdata = clipboard_copy(std::get<property_set::Clipboard>(value.data));
        break;
    }
    return variant;
}

Value value_of(const PROPVARIANT& variant) {
    const auto type = static_cast<Type>(variant.vt);
    switch (type) {
    case Type::i2:
        return {type, variant.iVal};
    case Type::i4:
        return {type, std::int32_t{variant.lVal}};
    case Type::boolean:
        return {type, variant.boolVal != 0};
    case Type::ui4:
        return {type, std::uint32_t{variant.ulVal}};
    case Type::filetime:
        return {type, stored_time(variant.filetime)};
    case Type::lpstr:
        return ansi_value(not_null(variant.pszVal));
    case Type::lpwstr:
        return {type, units_of(not_null(variant.pwszVal))};
    case Type::blob: {
        const BYTE* data = variant.blob.cbSize > 0 ? not_null(variant.blob.pBlobData) : nullptr;
        return {type, bytes::Bytes(data, data + variant.blob.cbSize)};
    }
    case Type::cf:
        return clipboard_value(*not_null(variant.pclipdata));
    }
    throw Error(Errc::unsupported, "property value of type " + std::to_string(variant.vt));
}

} // namespace platform

// Conversions between stored values ([MS-CFB] directory entries) and the interface's structures.
#include "platform/adapters/statstg.h"

#include "platform/base/bytes.h"

#include <algorithm>
#include <new>

namespace platform {

std::u16string units_of(const WCHAR* text) {
    return {text, text + std::char_traits<WCHAR>::length(text)};
}

WCHAR* task_memory_copy(std::u16string_view text) {
    auto* copy = static_cast<WCHAR*>(CoTaskMemAlloc((text.size() + 1) * sizeof(WCHAR)));
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    std::ranges::copy(text, copy);
    copy[text.size()] = 0;
    return copy;
}

CLSID class_id_of(const std::array<std::uint8_t, 16>& stored) {
    bytes::Cursor cursor(stored);
    CLSID id{};
    id.Data1 = cursor.u32();
    id.Data2 = cursor.u16();
    id.Data3 = cursor.u16();
    std::ranges::copy(cursor.take(8), id.Data4);
    return id;
}

std::array<std::uint8_t, 16> stored_class_id(REFCLSID class_id) {
    std::array<std::uint8_t, 16> stored{};
    bytes::store_u32(stored, 0, class_id.Data1);
    bytes::store_u16(stored, 4, class_id.Data2);
    bytes::store_u16(stored, 6, class_id.Data3);
    std::ranges::copy(class_id.Data4, stored.begin() + 8);
    return stored;
}

ULARGE_INTEGER large(std::uint64_t value) {
    ULARGE_INTEGER result{};
    result.QuadPart = value;
    return result;
}

FILETIME filetime_of(std::uint64_t stored) {
    return {static_cast<DWORD>(stored), static_cast<DWORD>(stored >> 32)};
}

std::uint64_t stored_time(const FILETIME& time) {
    return (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}

HRESULT check_stat_flags(DWORD flags) {
    return flags == STATFLAG_DEFAULT || flags == STATFLAG_NONAME ? S_OK : STG_E_INVALIDFLAG;
}

STATSTG describe(const compound_file::EntryInfo& info, std::u16string_view name, DWORD mode,
                 DWORD flags) {
    const bool is_stream = info.type == compound_file::EntryType::stream;
    STATSTG stat{};
    stat.type = is_stream ? STGTY_STREAM : STGTY_STORAGE;
    stat.cbSize.QuadPart = is_stream ? info.size : 0;
    stat.mtime = filetime_of(info.modified);
    stat.ctime = filetime_of(info.created);
    stat.grfMode = mode;
    stat.clsid = class_id_of(info.class_id);
    stat.grfStateBits = info.state_bits;
    stat.pwcsName = flags == STATFLAG_NONAME ? nullptr : task_memory_copy(name);
    return stat;
}

} // namespace platform

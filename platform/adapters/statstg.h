// Values of the engine in the shapes of the interfaces: STATSTG, class ids, times, names.
#pragma once

#include "platform/compound_file/compound_file.h"
#include "platform/platform.h"

#include <array>
#include <string>
#include <string_view>

namespace platform {

// The interfaces' UTF-16 text in the units of the engines, which are a type of their own on some
// systems.
std::u16string units_of(const WCHAR* text);

// A zero-terminated copy for the caller, from CoTaskMemAlloc; throws std::bad_alloc.
WCHAR* task_memory_copy(std::u16string_view text);

CLSID class_id_of(const std::array<std::uint8_t, 16>& stored);
std::array<std::uint8_t, 16> stored_class_id(REFCLSID class_id);

ULARGE_INTEGER large(std::uint64_t value);

FILETIME filetime_of(std::uint64_t stored);
std::uint64_t stored_time(const FILETIME& time);

// STATFLAG_DEFAULT and STATFLAG_NONAME are known, others are STG_E_INVALIDFLAG.
HRESULT check_stat_flags(DWORD flags);

// Describes an entry. `name` goes in as given (the root's is a path), unless flags say
// STATFLAG_NONAME.
STATSTG describe(const compound_file::EntryInfo& info, std::u16string_view name, DWORD mode,
                 DWORD flags);

} // namespace platform

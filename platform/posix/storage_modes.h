// The access modes (STGM) that storages and streams may be opened with. Only direct mode exists:
//
//   storage, opened    READ with DENY_WRITE or EXCLUSIVE; WRITE or READWRITE with EXCLUSIVE
//   root, created      WRITE or READWRITE with EXCLUSIVE, optionally CREATE
//   stream             any access with EXCLUSIVE
//   element, created   as above, optionally CREATE
//
// Everything else is STG_E_INVALIDFLAG.
#pragma once

#include "platform/posix/storage.h"

namespace platform {

enum class Creation { open, create };

inline DWORD access_of(DWORD mode) {
    return mode & 0x3;
}
inline bool can_read(DWORD mode) {
    return access_of(mode) != STGM_WRITE;
}
inline bool can_write(DWORD mode) {
    return access_of(mode) != STGM_READ;
}

HRESULT check_root_mode(DWORD mode, Creation creation);

// Modes of a sub-storage and of a stream inside a storage that was itself opened with
// `parent_mode`: STG_E_ACCESSDENIED for an access that the parent does not have.
HRESULT check_storage_mode(DWORD mode, DWORD parent_mode, Creation creation);
HRESULT check_stream_mode(DWORD mode, DWORD parent_mode, Creation creation);

} // namespace platform

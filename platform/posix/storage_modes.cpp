// The rules of storage_modes.h.
#include "platform/posix/storage_modes.h"

namespace platform {

namespace {

constexpr DWORD kSharingMask = 0x70;

DWORD sharing_of(DWORD mode) {
    return mode & kSharingMask;
}

bool has_only_known_flags(DWORD mode, Creation creation) {
    const DWORD known = 0x3 | kSharingMask | (creation == Creation::create ? STGM_CREATE : 0);
    return (mode & ~known) == 0 && access_of(mode) != 0x3;
}

bool has_storage_sharing(DWORD mode) {
    return sharing_of(mode) == STGM_SHARE_EXCLUSIVE ||
           (sharing_of(mode) == STGM_SHARE_DENY_WRITE && !can_write(mode));
}

HRESULT check_access(DWORD mode, DWORD parent_mode) {
    const bool granted =
        access_of(parent_mode) == STGM_READWRITE || access_of(parent_mode) == access_of(mode);
    return granted ? S_OK : STG_E_ACCESSDENIED;
}

} // namespace

HRESULT check_root_mode(DWORD mode, Creation creation) {
    const bool valid = has_only_known_flags(mode, creation) && has_storage_sharing(mode) &&
                       (creation == Creation::open || can_write(mode));
    return valid ? S_OK : STG_E_INVALIDFLAG;
}

HRESULT check_storage_mode(DWORD mode, DWORD parent_mode, Creation creation) {
    if (!has_only_known_flags(mode, creation) || !has_storage_sharing(mode)) {
        return STG_E_INVALIDFLAG;
    }
    return check_access(mode, parent_mode);
}

HRESULT check_stream_mode(DWORD mode, DWORD parent_mode, Creation creation) {
    if (!has_only_known_flags(mode, creation) || sharing_of(mode) != STGM_SHARE_EXCLUSIVE) {
        return STG_E_INVALIDFLAG;
    }
    return check_access(mode, parent_mode);
}

} // namespace platform

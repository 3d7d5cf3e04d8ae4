// Structured storage as the plug-in calls it: IUnknown, ISequentialStream, IStream, IStorage,
// ILockBytes and the functions that open storages. Implemented over platform/compound_file/.
//
// Differences from Windows that a caller can meet: only direct mode exists (STGM_TRANSACTED,
// STGM_PRIORITY, exclusion lists and STGM_CONVERT give STG_E_INVALIDFLAG), a storage opened without
// STGM_SHARE_EXCLUSIVE or STGM_SHARE_DENY_WRITE is refused likewise, and Revert does nothing.
// Every call returns an HRESULT; no exception leaves an interface.
#pragma once

#include "platform/posix/types.h"

// STGM: access, sharing, creation.
inline constexpr DWORD STGM_READ = 0x0;
inline constexpr DWORD STGM_WRITE = 0x1;
inline constexpr DWORD STGM_READWRITE = 0x2;
inline constexpr DWORD STGM_SHARE_DENY_NONE = 0x40;
inline constexpr DWORD STGM_SHARE_DENY_READ = 0x30;
inline constexpr DWORD STGM_SHARE_DENY_WRITE = 0x20;
inline constexpr DWORD STGM_SHARE_EXCLUSIVE = 0x10;
inline constexpr DWORD STGM_CREATE = 0x1000;
inline constexpr DWORD STGM_TRANSACTED = 0x10000;

inline constexpr DWORD STREAM_SEEK_SET = 0;
inline constexpr DWORD STREAM_SEEK_CUR = 1;
inline constexpr DWORD STREAM_SEEK_END = 2;

inline constexpr DWORD STATFLAG_DEFAULT = 0;
inline constexpr DWORD STATFLAG_NONAME = 1;

inline constexpr DWORD STGTY_STORAGE = 1;
inline constexpr DWORD STGTY_STREAM = 2;
inline constexpr DWORD STGTY_LOCKBYTES = 3;

inline constexpr DWORD STGC_DEFAULT = 0;

struct STATSTG {
    WCHAR* pwcsName; // allocated with CoTaskMemAlloc; null under STATFLAG_NONAME
    DWORD type;
    ULARGE_INTEGER cbSize;
    FILETIME mtime;
    FILETIME ctime;
    FILETIME atime;
    DWORD grfMode;
    DWORD grfLocksSupported;
    CLSID clsid;
    DWORD grfStateBits;
    DWORD reserved;
};

inline constexpr IID IID_IUnknown{0x00000000, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_ISequentialStream{
    0x0C733A30, 0x2A1C, 0x11CE, {0xAD, 0xE5, 0x00, 0xAA, 0x00, 0x44, 0x77, 0x3D}};
inline constexpr IID IID_IStream{0x0000000C, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IStorage{0x0000000B, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_ILockBytes{0x0000000A, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IEnumSTATSTG{0x0000000D, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct IUnknown {
    virtual HRESULT QueryInterface(REFIID iid, void** object) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;

  protected:
    ~IUnknown() = default;
};

struct ISequentialStream : IUnknown {
    virtual HRESULT Read(void* buffer, ULONG count, ULONG* read) = 0;
    virtual HRESULT Write(const void* buffer, ULONG count, ULONG* written) = 0;
};

struct IStream : ISequentialStream {
    virtual HRESULT Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) = 0;
    virtual HRESULT SetSize(ULARGE_INTEGER size) = 0;
    virtual HRESULT CopyTo(IStream* destination, ULARGE_INTEGER count, ULARGE_INTEGER* read,
                           ULARGE_INTEGER* written) = 0;
    virtual HRESULT Commit(DWORD flags) = 0;
    virtual HRESULT Revert() = 0;
    virtual HRESULT LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER count, DWORD type) = 0;
    virtual HRESULT UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER count, DWORD type) = 0;
    virtual HRESULT Stat(STATSTG* stat, DWORD flags) = 0;
    virtual HRESULT Clone(IStream** clone) = 0;
};

struct IEnumSTATSTG : IUnknown {
    virtual HRESULT Next(ULONG count, STATSTG* elements, ULONG* fetched) = 0;
    virtual HRESULT Skip(ULONG count) = 0;
    virtual HRESULT Reset() = 0;
    virtual HRESULT Clone(IEnumSTATSTG** clone) = 0;
};

struct IStorage : IUnknown {
    virtual HRESULT CreateStream(const WCHAR* name, DWORD mode, DWORD reserved1, DWORD reserved2,
                                 IStream** stream) = 0;
    virtual HRESULT OpenStream(const WCHAR* name, void* reserved1, DWORD mode, DWORD reserved2,
                               IStream** stream) = 0;
    virtual HRESULT CreateStorage(const WCHAR* name, DWORD mode, DWORD reserved1, DWORD reserved2,
                                  IStorage** storage) = 0;
    virtual HRESULT OpenStorage(const WCHAR* name, IStorage* priority, DWORD mode, WCHAR** exclude,
                                DWORD reserved, IStorage** storage) = 0;
    virtual HRESULT CopyTo(DWORD exclude_count, const IID* exclude, WCHAR** names,
                           IStorage* destination) = 0;
    virtual HRESULT MoveElementTo(const WCHAR* name, IStorage* destination, const WCHAR* new_name,
                                  DWORD flags) = 0;
    virtual HRESULT Commit(DWORD flags) = 0;
    virtual HRESULT Revert() = 0;
    virtual HRESULT EnumElements(DWORD reserved1, void* reserved2, DWORD reserved3,
                                 IEnumSTATSTG** elements) = 0;
    virtual HRESULT DestroyElement(const WCHAR* name) = 0;
    virtual HRESULT RenameElement(const WCHAR* old_name, const WCHAR* new_name) = 0;
    virtual HRESULT SetElementTimes(const WCHAR* name, const FILETIME* created,
                                    const FILETIME* accessed, const FILETIME* modified) = 0;
    virtual HRESULT SetClass(REFCLSID clsid) = 0;
    virtual HRESULT SetStateBits(DWORD bits, DWORD mask) = 0;
    virtual HRESULT Stat(STATSTG* stat, DWORD flags) = 0;
};

struct ILockBytes : IUnknown {
    virtual HRESULT ReadAt(ULARGE_INTEGER offset, void* buffer, ULONG count, ULONG* read) = 0;
    virtual HRESULT WriteAt(ULARGE_INTEGER offset, const void* buffer, ULONG count,
                            ULONG* written) = 0;
    virtual HRESULT Flush() = 0;
    virtual HRESULT SetSize(ULARGE_INTEGER size) = 0;
    virtual HRESULT LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER count, DWORD type) = 0;
    virtual HRESULT UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER count, DWORD type) = 0;
    virtual HRESULT Stat(STATSTG* stat, DWORD flags) = 0;
};

using LPSTREAM = IStream*;

// Opens the compound file at a path as the documents write it (see kernel.h on paths). Cost: the
// file's allocation table and directory are read and checked; no stream is.
HRESULT StgOpenStorage(const WCHAR* path, IStorage* priority, DWORD mode, WCHAR** exclude,
                       DWORD reserved, IStorage** storage);

// Creates a version 3 compound file; without STGM_CREATE an existing file is
// STG_E_FILEALREADYEXISTS.
HRESULT StgCreateDocfile(const WCHAR* path, DWORD mode, DWORD reserved, IStorage** storage);

// A byte array over a movable memory block (GlobalAlloc). The block is resized in place of the
// handle as the array grows; with `delete_on_release` 0 it stays the caller's.
HRESULT CreateILockBytesOnHGlobal(HGLOBAL memory, BOOL delete_on_release, ILockBytes** lock_bytes);

HRESULT StgOpenStorageOnILockBytes(ILockBytes* lock_bytes, IStorage* priority, DWORD mode,
                                   WCHAR** exclude, DWORD reserved, IStorage** storage);
HRESULT StgCreateDocfileOnILockBytes(ILockBytes* lock_bytes, DWORD mode, DWORD reserved,
                                     IStorage** storage);

// S_OK for a compound file, S_FALSE for another file, an error when it cannot be read.
HRESULT StgIsStorageFile(const WCHAR* path);

// The functions that open and create root storages, in files and in byte arrays. The whole of an
// opening is: look at the arguments, translate the path, open the backing (which takes the locks),
// hand it to the engine.
#include "platform/adapters/error_codes.h"
#include "platform/posix/ansi_text.h"
#include "platform/posix/full_path.h"
#include "platform/posix/kernel.h"
#include "platform/posix/lock_bytes_backing.h"
#include "platform/posix/paths.h"
#include "platform/posix/settings.h"
#include "platform/posix/storage_modes.h"
#include "platform/posix/storage_object.h"
#include "platform/unicode/utf8.h"

#include <string>

namespace platform {

namespace {

using compound_file::Access;
using compound_file::CompoundFile;

bool is_separator(char unit) {
    return unit == '\\' || unit == '/';
}

bool is_absolute(const std::string& path) {
    const bool is_share = path.size() > 1 && path[0] == '\\' && path[1] == '\\';
    const bool has_drive = path.size() > 2 && path[1] == ':' && is_separator(path[2]);
    return path[0] == '/' || is_share || has_drive;
}

// The path in the two forms in which it is needed.
struct Location {
    std::string native;
    std::u16string full;
};

// An empty path is a missing folder, as for the system's open call. A name that the ANSI code page
// lacks goes through in the bytes of the file system.
Location locate(std::u16string_view path, Creation creation) {
    const std::string ansi = utf8_to_ansi(unicode::utf16_to_utf8_lossy(path));
    if (ansi.empty()) {
        throw Error(Errc::path_not_found, "empty path");
    }
    Location location;
    location.native =
        creation == Creation::create ? native_path_to_write(ansi) : to_native_path(ansi);
    if (location.native.empty()) {
        const bool is_bad_name = GetLastError() == ERROR_INVALID_NAME;
        throw Error(is_bad_name ? Errc::invalid_name : Errc::path_not_found, ansi);
    }
    location.full = path;
    if (!is_absolute(ansi)) {
        const std::string full = full_path(ansi).text();
        location.full = unicode::utf8_to_utf16_lossy(ansi_to_utf8(full).value_or(full));
    }
    return location;
}

Access access_for(DWORD mode) {
    return can_write(mode) ? Access::read_write : Access::read;
}

} // namespace

} // namespace platform

HRESULT StgOpenStorage(const WCHAR* path, IStorage* priority, DWORD mode, WCHAR** exclude,
                       DWORD reserved, IStorage** storage) {
    using namespace platform;
    if (storage == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    *storage = nullptr;
    if (path == nullptr) {
        return STG_E_INVALIDNAME;
    }
    if (reserved != 0) {
        return STG_E_INVALIDPARAMETER;
    }
    if (priority != nullptr || exclude != nullptr) {
        return STG_E_INVALIDFLAG;
    }
    if (const HRESULT refused = check_root_mode(mode, Creation::open); FAILED(refused)) {
        return refused;
    }
    return guarded([&] {
        Location location = locate(path, Creation::open);
        const Access access = access_for(mode);
        auto engine = CompoundFile::open(compound_file::open_file(location.native, access), access);
        *storage = StorageObject::make_root(std::move(engine), std::move(location.full), mode);
        return S_OK;
    });
}

HRESULT StgCreateDocfile(const WCHAR* path, DWORD mode, DWORD reserved, IStorage** storage) {
    using namespace platform;
    if (storage == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    *storage = nullptr;
    if (path == nullptr) {
        return STG_E_INVALIDNAME;
    }
    if (reserved != 0) {
        return STG_E_INVALIDPARAMETER;
    }
    if (const HRESULT refused = check_root_mode(mode, Creation::create); FAILED(refused)) {
        return refused;
    }
    return guarded([&] {
        Location location = locate(path, Creation::create);
        const bool replace = (mode & STGM_CREATE) != 0;
        auto engine = CompoundFile::create(compound_file::create_file(location.native, replace),
                                           compound_file::Version::v3);
        *storage = StorageObject::make_root(std::move(engine), std::move(location.full), mode);
        return S_OK;
    });
}

HRESULT StgOpenStorageOnILockBytes(ILockBytes* lock_bytes, IStorage* priority, DWORD mode,
                                   WCHAR** exclude, DWORD reserved, IStorage** storage) {
    using namespace platform;
    if (storage == nullptr || lock_bytes == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    *storage = nullptr;
    if (reserved != 0) {
        return STG_E_INVALIDPARAMETER;
    }
    if (priority != nullptr || exclude != nullptr) {
        return STG_E_INVALIDFLAG;
    }
    if (const HRESULT refused = check_root_mode(mode, Creation::open); FAILED(refused)) {
        return refused;
    }
    return guarded([&] {
        auto engine = CompoundFile::open(make_lock_bytes_backing(*lock_bytes), access_for(mode));
        *storage = StorageObject::make_root(std::move(engine), {}, mode);
        return S_OK;
    });
}

HRESULT StgCreateDocfileOnILockBytes(ILockBytes* lock_bytes, DWORD mode, DWORD reserved,
                                     IStorage** storage) {
    using namespace platform;
    if (storage == nullptr || lock_bytes == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    *storage = nullptr;
    if (reserved != 0) {
        return STG_E_INVALIDPARAMETER;
    }
    if (const HRESULT refused = check_root_mode(mode, Creation::create); FAILED(refused)) {
        return refused;
    }
    return guarded([&] {
        auto backing = make_lock_bytes_backing(*lock_bytes);
        if ((mode & STGM_CREATE) == 0 && backing->size() > 0) {
            return STG_E_FILEALREADYEXISTS;
        }
        backing->truncate(0); // nothing of the old content may shine through
        auto engine = CompoundFile::create(std::move(backing), compound_file::Version::v3);
        *storage = StorageObject::make_root(std::move(engine), {}, mode);
        return S_OK;
    });
}

// Opens the file, so that the engine alone says what a compound file is; a damaged one is one too.
HRESULT StgIsStorageFile(const WCHAR* path) {
    using namespace platform;
    if (path == nullptr) {
        return STG_E_INVALIDNAME;
    }
    return guarded([&] {
        auto backing = compound_file::open_file(locate(path, Creation::open).native, Access::read);
        try {
            CompoundFile::open(std::move(backing), Access::read);
        } catch (const Error& error) {
            if (error.code() == Errc::not_compound_file) {
                return S_FALSE;
            }
            if (error.code() != Errc::corrupt) {
                throw;
            }
        }
        return S_OK;
    });
}

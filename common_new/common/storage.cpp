#include "common_new/common/storage.h"

#include "common_new/SafeFunc/paths.h"
#include "common_new/common/conversion.h"
#include "plugin/document_path.h"
#include "plugin/error_params.h"
#include "plugin/status.h"
#include "plugin/system_error.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace ppt {

namespace {

struct StatusOfResult {
    std::uint32_t result;
    std::int32_t status;
};

constexpr StatusOfResult kStatusOfResult[] = {
    {0x80030001, status::kInvalidFunction},   // STG_E_INVALIDFUNCTION
    {0x80030002, status::kFileNotFound},      // STG_E_FILENOTFOUND
    {0x80030004, status::kTooManyOpenFiles},  // STG_E_TOOMANYOPENFILES
    {0x80030005, status::kAccessDenied},      // STG_E_ACCESSDENIED
    {0x80030008, status::kSystemOutOfMemory}, // STG_E_INSUFFICIENTMEMORY
    {0x8003001D, status::kStorageWriteFault}, // STG_E_WRITEFAULT
    {0x8003001E, status::kReadFault},         // STG_E_READFAULT
    {0x80030020, status::kShareViolation},    // STG_E_SHAREVIOLATION
    {0x80030021, status::kFileInUse},         // STG_E_LOCKVIOLATION
    {0x80030050, status::kShareViolation},    // STG_E_FILEALREADYEXISTS
    {0x80030070, status::kDiskFull},          // STG_E_MEDIUMFULL
    {0x800300FC, status::kInvalidName},       // STG_E_INVALIDNAME
    {0x800300FF, status::kNullArgument},      // STG_E_INVALIDFLAG
    {0x80030103, status::kWriteFault},        // STG_E_CANTSAVE
};

constexpr DWORD kReadMode = STGM_READ | STGM_SHARE_DENY_WRITE;
constexpr DWORD kStreamReadMode = STGM_READ | STGM_SHARE_EXCLUSIVE;
constexpr DWORD kWriteMode = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;

// The status of a platform call; kSystemError, which no COM result has, only when it threw: the
// error parameters are then untouched and stay so.
template <class Call>
std::int32_t status_of(Call call) {
    try {
        return j_translateComError(call());
    } catch (...) {
        return status::kSystemError;
    }
}

bool needs_no_words(std::int32_t status) {
    return status == status::kSuccess || status == status::kSystemError;
}

// `text`, then the count that was met, then the count that was wanted.
void set_counts(const char* text, std::int64_t met, std::int64_t wanted) {
    v_setErrorParamTextAndNumber(text, static_cast<std::int32_t>(met));
    b_appendErrorParamNumber(static_cast<std::int32_t>(wanted));
}

std::int32_t clamp_count(std::size_t count) {
    constexpr std::int32_t kMost = 0x7FFFFFFF;
    return std::in_range<std::int32_t>(count) ? static_cast<std::int32_t>(count) : kMost;
}

std::int32_t denied(bool read_only) {
    return read_only ? status::kAccessDenied : status::kWriteProtected;
}

// A place in front of the start is refused, but not by all streams: with some the next read fails
// or ends the process. There the stream is taken back.
HRESULT seek(IStream& stream, std::int32_t offset, DWORD origin, ULARGE_INTEGER& position) {
    constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    LARGE_INTEGER move{};
    move.QuadPart = offset;
    const HRESULT result = stream.Seek(move, origin, &position);
    if (FAILED(result) || position.QuadPart <= kLargest) {
        return result;
    }
    ULARGE_INTEGER start{};
    stream.Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, &start);
    return STG_E_INVALIDFUNCTION;
}

} // namespace

std::int32_t j_translateComError(HRESULT result) {
    if (result == S_OK) {
        return status::kSuccess;
    }
    const std::uint32_t code = static_cast<std::uint32_t>(result);
    v_setErrorParamSystem(code, true);
    const auto known =
        std::find_if(std::begin(kStatusOfResult), std::end(kStatusOfResult),
                     [code](const StatusOfResult& row) { return row.result == code; });
    return known == std::end(kStatusOfResult) ? status::kDamaged : known->status;
}

std::int32_t j_openStorageFile(const WCHAR* path, bool read_only, IStorage** storage) {
    if (path == nullptr) {
        return status::kNullArgument;
    }
    const std::int32_t status = status_of([&] {
        return StgOpenStorage(path, nullptr, read_only ? kReadMode : kWriteMode, nullptr, 0,
                              storage);
    });
    if (needs_no_words(status)) {
        return status;
    }
    v_setErrorParamWideText(path);
    switch (status) {
    case status::kShareViolation:
        return status::kInUseByOther;
    case status::kFileInUse:
    case status::kAccessDenied:
        v_setErrorParamTextAndUser(path);
        return denied(read_only);
    default:
        return status;
    }
}

std::int32_t j_openSubStorage(IStorage* parent, const WCHAR* name, bool read_only,
                              IStorage** storage) {
    if (name == nullptr) {
        return status::kNullArgument;
    }
    const std::int32_t status = status_of([&] {
        return parent->OpenStorage(name, nullptr, read_only ? kReadMode : kWriteMode, nullptr, 0,
                                   storage);
    });
    if (needs_no_words(status)) {
        return status;
    }
    v_setErrorParamTextAndWide(document_path(), name);
    switch (status) {
    case status::kAccessDenied:
        v_setErrorParamTextAndUser(name);
        return denied(read_only);
    case status::kFileNotFound:
        return status::kElementMissing;
    default:
        return status;
    }
}

std::int32_t j_openStream(IStorage* storage, const WCHAR* name, bool read_only, IStream** stream) {
    if (storage == nullptr || name == nullptr) {
        return status::kNullArgument;
    }
    const std::int32_t status = status_of([&] {
        return storage->OpenStream(name, nullptr, read_only ? kStreamReadMode : kWriteMode, 0,
                                   stream);
    });
    if (needs_no_words(status)) {
        return status;
    }
    v_setErrorParamTextAndWide(document_path(), name);
    const bool missing = status == status::kFileNotFound || status == status::kInvalidName;
    return missing ? status::kElementMissing : status;
}

std::int32_t j_readStream(IStream* stream, void* buffer, std::int32_t count,
                          std::int32_t* count_read) {
    if (stream == nullptr || buffer == nullptr) {
        return status::kNullArgument;
    }
    ULONG read = 0;
    const std::int32_t status =
        status_of([&] { return stream->Read(buffer, static_cast<ULONG>(count), &read); });
    const std::int32_t came = static_cast<std::int32_t>(read);
    if (count_read != nullptr) {
        *count_read = came;
    }
    if (status == status::kSuccess && came < count) {
        set_counts(document_path().c_str(), came, count);
        return status::kShortRead;
    }
    if (needs_no_words(status)) {
        return status;
    }
    v_setErrorParamText(document_path());
    if (status == status::kAccessDenied) {
        v_setErrorParamTextAndUser(document_path().c_str());
    }
    return status;
}

std::int32_t j_writeStream(const char* path, IStream* stream, const void* buffer,
                           std::int32_t count) {
    if (stream == nullptr || buffer == nullptr || path == nullptr) {
        return status::kNullArgument;
    }
    ULONG written = 0;
    const std::int32_t status =
        status_of([&] { return stream->Write(buffer, static_cast<ULONG>(count), &written); });
    const std::int32_t taken = static_cast<std::int32_t>(written);
    if (status == status::kSuccess && taken < count) {
        set_counts(path, count, taken);
        return status::kShortWrite;
    }
    if (needs_no_words(status)) {
        return status;
    }
    v_setErrorParamText(path);
    switch (status) {
    case status::kFileInUse:
    case status::kAccessDenied:
        v_setErrorParamTextAndUser(path);
        return status::kWriteProtected;
    case status::kDiskFull:
        v_setErrorParamDriveAndNumber(path, count);
        return status;
    default:
        return status;
    }
}

std::int32_t j_seekStream(const char* name, IStream* stream, std::int32_t offset,
                          std::int32_t origin, std::uint32_t* new_position) {
    if (stream == nullptr || name == nullptr) {
        return status::kNullArgument;
    }
    ULARGE_INTEGER position{};
    const std::int32_t status =
        status_of([&] { return seek(*stream, offset, static_cast<DWORD>(origin), position); });
    if (status == status::kSuccess && new_position != nullptr) {
        *new_position = static_cast<std::uint32_t>(position.QuadPart);
    }
    if (needs_no_words(status)) {
        return status;
    }
    if (*name != 0) {
        v_setErrorParamText(name);
    } else {
        v_setErrorParamTextAndNumber(document_path(), offset);
    }
    switch (origin) {
    case 0:
        return status::kSeekFromStartFailed;
    case 1:
        return status::kSeekFromHereFailed;
    default:
        return status::kSeekFromEndFailed;
    }
}

std::int32_t j_copyStream(IStream* source, IStream* destination, std::int32_t count) {
    if (source == nullptr || destination == nullptr) {
        return status::kNullArgument;
    }
    ULARGE_INTEGER wanted{};
    wanted.QuadPart = static_cast<std::uint64_t>(std::int64_t{count});
    ULARGE_INTEGER read{};
    ULARGE_INTEGER written{};
    const std::int32_t status =
        status_of([&] { return source->CopyTo(destination, wanted, &read, &written); });
    if (status == status::kDiskFull) {
        v_setErrorParamDriveAndNumber(document_path(), count);
    }
    if (status != status::kSuccess || count == -1) {
        return status;
    }
    if (read.QuadPart < wanted.QuadPart) {
        set_counts(document_path().c_str(), static_cast<std::int64_t>(read.QuadPart), count);
        return status::kShortRead;
    }
    if (written.QuadPart < wanted.QuadPart) {
        set_counts(document_path().c_str(), static_cast<std::int64_t>(written.QuadPart), count);
        return status::kShortWrite;
    }
    return status::kSuccess;
}

std::int32_t j_openStorageOnMemory(HGLOBAL memory, bool read_only, IStorage** storage,
                                   ILockBytes** lock_bytes, HRESULT* result) {
    HRESULT opened = S_OK;
    try {
        ComPtr<ILockBytes> bytes;
        opened = CreateILockBytesOnHGlobal(memory, FALSE, bytes.put());
        if (opened == S_OK) {
            opened = StgOpenStorageOnILockBytes(
                bytes.get(), nullptr, read_only ? kReadMode : kWriteMode, nullptr, 0, storage);
        }
        if (lock_bytes != nullptr && bytes) {
            *lock_bytes = bytes.detach();
        }
    } catch (...) {
        return status::kSystemError;
    }
    if (result != nullptr) {
        *result = opened;
    }
    if (opened == S_OK) {
        return status::kSuccess;
    }
    v_setErrorParamNumbers(clamp_count(GlobalSize(memory)), n_getAvailablePhysicalMemory());
    return status::kStorageOnMemoryFailed;
}

std::int32_t n_getAvailablePhysicalMemory() {
    MEMORYSTATUS memory{};
    memory.dwLength = sizeof memory;
    GlobalMemoryStatus(&memory);
    return clamp_count(memory.dwAvailPhys);
}

} // namespace ppt

// Structured storage as the plug-in uses it: each wrapper makes one platform call, turns its COM
// result into a status code and, on failure, leaves the names and numbers that explain it in the
// error parameters.
//
// No wrapper throws or keeps a reference: what it opens belongs to the caller, who looks at the
// status and never at the out-pointer of a failed call. A null where the text says so gives 8300
// before anything else happens; an exception inside the platform call gives 8000. Counts and
// offsets are signed 32-bit and widened by sign extension.
#pragma once

#include "platform/platform.h"

#include <cstdint>

namespace ppt {

// Files and storages open for reading and deny writing, or for both and exclusively; streams always
// exclusively.

// 8300 for a null path. 7530 when another process holds the file; no access is 6100 or, for
// writing, 6300.
std::int32_t j_openStorageFile(const WCHAR* path, bool read_only, IStorage** storage);

// 8300 for a null name. 7295 when there is no such storage; no access is 6100 or 6300.
std::int32_t j_openSubStorage(IStorage* parent, const WCHAR* name, bool read_only,
                              IStorage** storage);

// 8300 for a null storage or name. 7295 when there is no such stream.
std::int32_t j_openStream(IStorage* storage, const WCHAR* name, bool read_only, IStream** stream);

// 8300 for a null stream or buffer; 7180 when fewer bytes came than asked. `count_read` (may be
// null) gets the bytes that came, on failure too.
std::int32_t j_readStream(IStream* stream, void* buffer, std::int32_t count,
                          std::int32_t* count_read = nullptr);

// `path` only explains failures. 8300 for a null path, stream or buffer; 6300 without access, 8900
// when the disk is full, 5500 when fewer bytes were taken.
std::int32_t j_writeStream(const char* path, IStream* stream, const void* buffer,
                           std::int32_t count);

// Origin 0 is the start, 1 the current position, anything else the end. `name` only explains
// failures; empty means the document path. `new_position` (may be null) gets the low 32 bits.
// 8300 for a null name or stream; 5650, 5660, 5670 by origin when the stream refuses.
std::int32_t j_seekStream(const char* name, IStream* stream, std::int32_t offset,
                          std::int32_t origin, std::uint32_t* new_position = nullptr);

// From position to position; a count of -1 copies the rest of the source and compares no counts.
// 8300 for a null stream; 8900 when the disk is full; 7180 and 5500 for short reads and writes.
std::int32_t j_copyStream(IStream* source, IStream* destination, std::int32_t count);

// A storage over a movable memory block, which stays the caller's. `lock_bytes` (may be null) gets
// the byte array behind it, even when only the storage could not be opened. Failures are 5700,
// memory that ran out among them; `result` (may be null) gets the COM result, which tells it from
// the others.
std::int32_t j_openStorageOnMemory(HGLOBAL memory, bool read_only, IStorage** storage,
                                   ILockBytes** lock_bytes = nullptr, HRESULT* result = nullptr);

// In bytes, at most 2^31 - 1; for error parameters only.
std::int32_t n_getAvailablePhysicalMemory();

// The status code of a COM result: 0 for S_OK, for anything else a failure (S_FALSE too), whose
// system error form becomes the error parameters.
std::int32_t j_translateComError(HRESULT result);

} // namespace ppt

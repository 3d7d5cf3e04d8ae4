// The status codes that every exported function and every helper reports. 0 is success; the host
// words the message for a code and puts the error parameters (error_params.h) into it.
//
// Worker code throws a code as an `int`; the helpers of common_new/ return it.
#pragma once

#include <cstdint>

namespace ppt::status {

inline constexpr std::int32_t kSuccess = 0;

// Loading and rewriting as a whole.
inline constexpr std::int32_t kVersionAboveCeiling = 3000; // version, ceiling
inline constexpr std::int32_t kNoFullPath = 5100;          // path, buffer size
inline constexpr std::int32_t kWriteFault = 5200;          // also: unexpected failure of a rewrite
inline constexpr std::int32_t kCopyFailed = 5400;          // source, destination
inline constexpr std::int32_t kNotAPresentation = 6400;    // not of the supported format
inline constexpr std::int32_t kLoadFailed = 7160;          // unexpected failure; the path
inline constexpr std::int32_t kPropertiesFailed = 7280;    // unexpected failure; document path

// Streams and storages.
inline constexpr std::int32_t kShortWrite = 5500;            // path, count given, count written
inline constexpr std::int32_t kSeekFromStartFailed = 5650;   // name, or path and offset
inline constexpr std::int32_t kSeekFromHereFailed = 5660;    // likewise
inline constexpr std::int32_t kSeekFromEndFailed = 5670;     // likewise
inline constexpr std::int32_t kStorageOnMemoryFailed = 5700; // block size, available memory
inline constexpr std::int32_t kShortRead = 7180;             // path, count read, count asked
inline constexpr std::int32_t kElementMissing = 7295;        // no such stream or sub-storage
inline constexpr std::int32_t kInUseByOther = 7530;          // the file is open elsewhere
inline constexpr std::int32_t kStorageWriteFault = 7550;
inline constexpr std::int32_t kBadDecompression = 7155; // a packed embedded storage is damaged
inline constexpr std::int32_t kDamaged = 8140; // damaged structure, or a COM result without a code

// Files and access.
inline constexpr std::int32_t kFileInUse = 6000;      // sharing or lock violation
inline constexpr std::int32_t kAccessDenied = 6100;   // path and user name
inline constexpr std::int32_t kShareViolation = 6200; // or the compound file exists already
inline constexpr std::int32_t kWriteProtected = 6300; // or no access where writing was asked for
inline constexpr std::int32_t kReadFault = 7130;
inline constexpr std::int32_t kEndOfFile = 7145;
inline constexpr std::int32_t kFileNotFound = 7510;
inline constexpr std::int32_t kPathNotFound = 7520;
inline constexpr std::int32_t kDeviceNotReady = 7560;
inline constexpr std::int32_t kTooManyOpenFiles = 7570;
inline constexpr std::int32_t kBadPathName = 7580;
inline constexpr std::int32_t kInvalidName = 7585;
inline constexpr std::int32_t kOpenFailed = 7590;
inline constexpr std::int32_t kDiskFull = 8900; // drive and count

// Text, arguments, memory and the rest.
inline constexpr std::int32_t kNoUnicodeForm = 6505;   // a text does not convert
inline constexpr std::int32_t kTextTooLong = 7140;     // the text, the limit
inline constexpr std::int32_t kSystemError = 8000;     // without a code of its own, or an exception
inline constexpr std::int32_t kIndexOutOfRange = 8250; // index, number of links
inline constexpr std::int32_t kNullArgument = 8300;    // or an invalid parameter
inline constexpr std::int32_t kInvalidFunction = 8350;
inline constexpr std::int32_t kOutOfMemory = 8800;       // an allocation of the plug-in failed
inline constexpr std::int32_t kSystemOutOfMemory = 9000; // the system reports no memory

} // namespace ppt::status

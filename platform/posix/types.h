// Basic types, result codes and constants of the system interfaces, with the names and values that
// they have on Windows. Widths are fixed: LONG and HRESULT are 32 bits here as there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// Methods and functions of the system have the compiler's own calling convention here.
#define STDMETHODCALLTYPE
#define STDAPICALLTYPE

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using INT = std::int32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using BOOL = std::int32_t;
using WCHAR = char16_t;
using HRESULT = std::int32_t;
using HGLOBAL = void*;
using PROPID = ULONG;
using VARTYPE = std::uint16_t;

inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;

struct LARGE_INTEGER {
    std::int64_t QuadPart;
};
struct ULARGE_INTEGER {
    std::uint64_t QuadPart;
};
struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];

    friend bool operator==(const GUID& a, const GUID& b) {
        return std::memcmp(&a, &b, sizeof(GUID)) == 0;
    }
};
using IID = GUID;
using CLSID = GUID;
using FMTID = GUID;
using REFIID = const IID&;
using REFCLSID = const CLSID&;
using REFFMTID = const FMTID&;

constexpr HRESULT hresult(std::uint32_t value) {
    return static_cast<HRESULT>(value);
}
constexpr bool SUCCEEDED(HRESULT result) {
    return result >= 0;
}
constexpr bool FAILED(HRESULT result) {
    return result < 0;
}

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = hresult(0x80004001);
inline constexpr HRESULT E_NOINTERFACE = hresult(0x80004002);
inline constexpr HRESULT E_POINTER = hresult(0x80004003);
inline constexpr HRESULT E_FAIL = hresult(0x80004005);
inline constexpr HRESULT E_UNEXPECTED = hresult(0x8000FFFF);
inline constexpr HRESULT E_OUTOFMEMORY = hresult(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = hresult(0x80070057);
inline constexpr HRESULT STG_E_INVALIDFUNCTION = hresult(0x80030001);
inline constexpr HRESULT STG_E_FILENOTFOUND = hresult(0x80030002);
inline constexpr HRESULT STG_E_PATHNOTFOUND = hresult(0x80030003);
inline constexpr HRESULT STG_E_TOOMANYOPENFILES = hresult(0x80030004);
inline constexpr HRESULT STG_E_ACCESSDENIED = hresult(0x80030005);
inline constexpr HRESULT STG_E_INVALIDHANDLE = hresult(0x80030006);
inline constexpr HRESULT STG_E_INSUFFICIENTMEMORY = hresult(0x80030008);
inline constexpr HRESULT STG_E_INVALIDPOINTER = hresult(0x80030009);
inline constexpr HRESULT STG_E_WRITEFAULT = hresult(0x8003001D);
inline constexpr HRESULT STG_E_READFAULT = hresult(0x8003001E);
inline constexpr HRESULT STG_E_SHAREVIOLATION = hresult(0x80030020);
inline constexpr HRESULT STG_E_LOCKVIOLATION = hresult(0x80030021);
inline constexpr HRESULT STG_E_FILEALREADYEXISTS = hresult(0x80030050);
inline constexpr HRESULT STG_E_INVALIDPARAMETER = hresult(0x80030057);
inline constexpr HRESULT STG_E_MEDIUMFULL = hresult(0x80030070);
inline constexpr HRESULT STG_E_INVALIDHEADER = hresult(0x800300FB);
inline constexpr HRESULT STG_E_INVALIDNAME = hresult(0x800300FC);
inline constexpr HRESULT STG_E_INVALIDFLAG = hresult(0x800300FF);
inline constexpr HRESULT STG_E_REVERTED = hresult(0x80030102);
inline constexpr HRESULT STG_E_CANTSAVE = hresult(0x80030103);
inline constexpr HRESULT STG_E_DOCFILECORRUPT = hresult(0x80030109);
inline constexpr HRESULT STG_E_DOCFILETOOLARGE = hresult(0x80030111);

// Windows error numbers ("last error").
inline constexpr DWORD ERROR_SUCCESS = 0;
inline constexpr DWORD ERROR_INVALID_FUNCTION = 1;
inline constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
inline constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
inline constexpr DWORD ERROR_TOO_MANY_OPEN_FILES = 4;
inline constexpr DWORD ERROR_ACCESS_DENIED = 5;
inline constexpr DWORD ERROR_INVALID_HANDLE = 6;
inline constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr DWORD ERROR_WRITE_PROTECT = 19;
inline constexpr DWORD ERROR_NOT_READY = 21;
inline constexpr DWORD ERROR_WRITE_FAULT = 29;
inline constexpr DWORD ERROR_READ_FAULT = 30;
inline constexpr DWORD ERROR_GEN_FAILURE = 31;
inline constexpr DWORD ERROR_SHARING_VIOLATION = 32;
inline constexpr DWORD ERROR_LOCK_VIOLATION = 33;
inline constexpr DWORD ERROR_BAD_NETPATH = 53;
inline constexpr DWORD ERROR_FILE_EXISTS = 80;
inline constexpr DWORD ERROR_INVALID_PARAMETER = 87;
inline constexpr DWORD ERROR_DISK_FULL = 112;
inline constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr DWORD ERROR_INVALID_NAME = 123;
inline constexpr DWORD ERROR_INVALID_LEVEL = 124;
inline constexpr DWORD ERROR_DISCARDED = 157;
inline constexpr DWORD ERROR_NOT_LOCKED = 158;
inline constexpr DWORD ERROR_BAD_PATHNAME = 161;
inline constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
inline constexpr DWORD ERROR_MORE_DATA = 234;
inline constexpr DWORD ERROR_DIRECTORY = 267;
inline constexpr DWORD ERROR_MR_MID_NOT_FOUND = 317;
inline constexpr DWORD ERROR_INVALID_FLAGS = 1004;
inline constexpr DWORD ERROR_NO_UNICODE_TRANSLATION = 1113;
inline constexpr DWORD ERROR_BAD_DEVICE = 1200;
inline constexpr DWORD ERROR_NO_NET_OR_BAD_PATH = 1203;
inline constexpr DWORD ERROR_NONE_MAPPED = 1332;
inline constexpr DWORD ERROR_RESOURCE_LANG_NOT_FOUND = 1815;
inline constexpr DWORD ERROR_CANT_RESOLVE_FILENAME = 1921;
inline constexpr DWORD ERROR_NOT_CONNECTED = 2250;

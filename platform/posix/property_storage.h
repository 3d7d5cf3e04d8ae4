// Property sets as the plug-in calls them: IPropertyStorage on a property set stream, PROPVARIANT
// and the allocator of the texts and blobs that they hand out. Implemented over
// platform/property_set/. The types that can be read are listed in docs/property-sets.md; a value
// of another type fails with 0x80070032 (ERROR_NOT_SUPPORTED) and is kept as it is.
#pragma once

#include "platform/posix/storage.h"

inline constexpr VARTYPE VT_EMPTY = 0;
inline constexpr VARTYPE VT_I2 = 2;
inline constexpr VARTYPE VT_I4 = 3;
inline constexpr VARTYPE VT_BOOL = 11;
inline constexpr VARTYPE VT_UI4 = 19;
inline constexpr VARTYPE VT_LPSTR = 30;
inline constexpr VARTYPE VT_LPWSTR = 31;
inline constexpr VARTYPE VT_FILETIME = 64;
inline constexpr VARTYPE VT_BLOB = 65;
inline constexpr VARTYPE VT_CF = 71;

struct BLOB {
    ULONG cbSize;
    BYTE* pBlobData;
};

struct CLIPDATA {
    ULONG cbSize; // of the data and the format tag
    LONG ulClipFmt;
    BYTE* pClipData;
};

struct PROPVARIANT {
    VARTYPE vt;
    WORD wReserved1;
    WORD wReserved2;
    WORD wReserved3;
    union {
        std::int16_t iVal;
        LONG lVal;
        ULONG ulVal;
        std::int16_t boolVal;
        FILETIME filetime;
        char* pszVal;
        WCHAR* pwszVal;
        BLOB blob;
        CLIPDATA* pclipdata;
    };
};

inline constexpr ULONG PRSPEC_LPWSTR = 0;
inline constexpr ULONG PRSPEC_PROPID = 1;

struct PROPSPEC {
    ULONG ulKind;
    union {
        PROPID propid;
        WCHAR* lpwstr;
    };
};

struct STATPROPSTG {
    WCHAR* lpwstrName; // allocated with CoTaskMemAlloc; null for a property without a name
    PROPID propid;
    VARTYPE vt;
};

struct STATPROPSETSTG {
    FMTID fmtid;
    CLSID clsid;
    DWORD grfFlags;
    FILETIME mtime;
    FILETIME ctime;
    FILETIME atime;
    DWORD dwOSVersion;
};

inline constexpr IID IID_IPropertyStorage{0x00000138, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IEnumSTATPROPSTG{0x00000139, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr FMTID FMTID_DocSummaryInformation{
    0xD5CDD502, 0x2E9C, 0x101B, {0x93, 0x97, 0x08, 0x00, 0x2B, 0x2C, 0xF9, 0xAE}};
inline constexpr FMTID FMTID_UserDefinedProperties{
    0xD5CDD505, 0x2E9C, 0x101B, {0x93, 0x97, 0x08, 0x00, 0x2B, 0x2C, 0xF9, 0xAE}};

struct IEnumSTATPROPSTG : IUnknown {
    virtual HRESULT Next(ULONG count, STATPROPSTG* properties, ULONG* fetched) = 0;
    virtual HRESULT Skip(ULONG count) = 0;
    virtual HRESULT Reset() = 0;
    virtual HRESULT Clone(IEnumSTATPROPSTG** clone) = 0;
};

struct IPropertyStorage : IUnknown {
    // S_FALSE when none of the properties exists; a missing one reads as VT_EMPTY.
    virtual HRESULT ReadMultiple(ULONG count, const PROPSPEC* specs, PROPVARIANT* values) = 0;
    virtual HRESULT WriteMultiple(ULONG count, const PROPSPEC* specs, const PROPVARIANT* values,
                                  PROPID first_new_id) = 0;
    virtual HRESULT DeleteMultiple(ULONG count, const PROPSPEC* specs) = 0;
    virtual HRESULT ReadPropertyNames(ULONG count, const PROPID* ids, WCHAR** names) = 0;
    virtual HRESULT WritePropertyNames(ULONG count, const PROPID* ids, WCHAR* const* names) = 0;
    virtual HRESULT DeletePropertyNames(ULONG count, const PROPID* ids) = 0;
    virtual HRESULT Commit(DWORD flags) = 0;
    virtual HRESULT Revert() = 0;
    virtual HRESULT Enum(IEnumSTATPROPSTG** properties) = 0;
    virtual HRESULT SetTimes(const FILETIME* created, const FILETIME* accessed,
                             const FILETIME* modified) = 0;
    virtual HRESULT SetClass(REFCLSID clsid) = 0;
    virtual HRESULT Stat(STATPROPSETSTG* stat) = 0;
};

// Opens a section of the property set stream behind `unknown`; STG_E_FILENOTFOUND when the stream
// has no such section.
HRESULT StgOpenPropStg(IUnknown* unknown, REFFMTID fmtid, DWORD flags, DWORD reserved,
                       IPropertyStorage** storage);

// Creates the section, and the stream's header when the stream is empty; a section that is there is
// opened and keeps its properties.
HRESULT StgCreatePropStg(IUnknown* unknown, REFFMTID fmtid, const CLSID* clsid, DWORD flags,
                         DWORD reserved, IPropertyStorage** storage);

// Frees what a PROPVARIANT owns and makes it VT_EMPTY.
HRESULT PropVariantClear(PROPVARIANT* value);

void* CoTaskMemAlloc(std::size_t size);
void CoTaskMemFree(void* memory);

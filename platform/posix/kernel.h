// The kernel, user and network calls that the plug-in names, with their Windows meanings: results,
// buffer rules and last-error values are those that Windows documents for each call.
//
// Paths. Callers speak the paths of the documents. The layer translates at the system call and only
// there: a path that begins with '/' names itself; a drive letter or a \\server\share is looked up
// in the table of drives and shares (settings.h); '\' and '/' both separate; a name that is not
// there in that letter case is looked for without regard to case.
//
// Text given to the A functions is in the ANSI code page: that of the locale unless settings.h
// chose another; the plain C locale counts as UTF-8.
#pragma once

#include "platform/posix/types.h"

#include <cstdio>

inline constexpr UINT CP_ACP = 0;
inline constexpr UINT CP_UTF8 = 65001;
inline constexpr DWORD MB_ERR_INVALID_CHARS = 0x8;
inline constexpr DWORD WC_ERR_INVALID_CHARS = 0x80; // with CP_UTF8 only
inline constexpr DWORD WC_NO_BEST_FIT_CHARS = 0x400;

DWORD GetLastError();
void SetLastError(DWORD error);

UINT GetACP();
BOOL IsDBCSLeadByte(BYTE byte);

struct CPINFO {
    UINT MaxCharSize; // bytes of the longest character
    BYTE DefaultChar[2];
    BYTE LeadByte[12];
};

// Only CP_ACP is known; DefaultChar is '?' and LeadByte stays empty.
BOOL GetCPInfo(UINT code_page, CPINFO* info);

int MultiByteToWideChar(UINT code_page, DWORD flags, const char* source, int source_length,
                        WCHAR* destination, int destination_size);
int WideCharToMultiByte(UINT code_page, DWORD flags, const WCHAR* source, int source_length,
                        char* destination, int destination_size, const char* default_character,
                        BOOL* used_default);

inline constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
inline constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x1;
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;

BOOL CopyFileA(const char* source, const char* destination, BOOL fail_if_exists);
DWORD GetFileAttributesA(const char* path);
DWORD GetFullPathNameA(const char* path, DWORD size, char* buffer, char** file_part);
DWORD GetCurrentDirectoryA(DWORD size, char* buffer);
BOOL SetCurrentDirectoryA(const char* path);

// Only the names "=Q:" of drives, whose values are the directories that "Q:a.doc" is taken from
// while another drive is current; ERROR_INVALID_PARAMETER for another name or a path elsewhere.
BOOL SetEnvironmentVariableA(const char* name, const char* value);

// The executable's own path, which begins with '/'; `module` must be null.
DWORD GetModuleFileNameA(void* module, char* buffer, DWORD size);

inline constexpr UINT GMEM_FIXED = 0x0;
inline constexpr UINT GMEM_MOVEABLE = 0x2;
inline constexpr UINT GMEM_ZEROINIT = 0x40;

struct MEMORYSTATUS {
    DWORD dwLength;
    DWORD dwMemoryLoad;
    std::size_t dwTotalPhys;
    std::size_t dwAvailPhys;
    std::size_t dwTotalPageFile;
    std::size_t dwAvailPageFile;
    std::size_t dwTotalVirtual;
    std::size_t dwAvailVirtual;
};

// Memory blocks are zeroed whether or not GMEM_ZEROINIT is given, and so is what GlobalReAlloc
// adds: no heap content may end up in a file.
HGLOBAL GlobalAlloc(UINT flags, std::size_t size);
HGLOBAL GlobalReAlloc(HGLOBAL memory, std::size_t size, UINT flags);
HGLOBAL GlobalFree(HGLOBAL memory);
void* GlobalLock(HGLOBAL memory);
BOOL GlobalUnlock(HGLOBAL memory);
std::size_t GlobalSize(HGLOBAL memory);
void GlobalMemoryStatus(MEMORYSTATUS* status);

inline constexpr DWORD FORMAT_MESSAGE_IGNORE_INSERTS = 0x200;
inline constexpr DWORD FORMAT_MESSAGE_FROM_SYSTEM = 0x1000;

// Only the system table without inserts; texts end with CR LF as the system's do.
DWORD FormatMessageA(DWORD flags, const void* source, DWORD message, DWORD language, char* buffer,
                     DWORD size, void* arguments);

inline constexpr DWORD UNLEN = 256;

BOOL GetUserNameA(char* buffer, DWORD* size);

inline constexpr DWORD NO_ERROR = 0;
inline constexpr DWORD UNIVERSAL_NAME_INFO_LEVEL = 1;

struct UNIVERSAL_NAME_INFOA {
    char* lpUniversalName;
};

DWORD WNetGetUniversalNameA(const char* local_path, DWORD level, void* buffer, DWORD* size);

HRESULT CoInitialize(void* reserved);
void CoUninitialize();

// Beside the system's own: opens the file at a path of the documents for writing from its start, or
// null, also for a symbolic link: where others may write, it could lead to a file of the user's.
// The caller closes it.
std::FILE* open_text_log(const char* path);

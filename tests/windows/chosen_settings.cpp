// What tests of other systems set for themselves, on Windows: the ANSI code page, of which Windows
// has one for all programs, and which drives are shares. The choices stand between the code under
// test and the functions of the system that know them; these do the work.
#include "platform/platform.h"
#include "platform/posix/settings.h"

#include <algorithm>
#include <map>

#if defined(__i386__)
#define IMPORT_POINTER(name, argument_bytes) __asm__("__imp__" #name "@" #argument_bytes)
#else
#define IMPORT_POINTER(name, argument_bytes) __asm__("__imp_" #name)
#endif

namespace {

UINT chosen_page = CP_ACP; // the system's own until a test chooses

std::map<std::string, std::string> drive_shares; // "Z:" to "\\srv\pub"

template <class Function>
Function* system_function(const char* library, const char* name) {
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(library), name)));
}

UINT in_chosen_page(UINT page) {
    return page == CP_ACP ? chosen_page : page;
}

UINT WINAPI code_page() {
    static const auto real = system_function<decltype(::GetACP)>("kernel32", "GetACP");
    return chosen_page == CP_ACP ? real() : chosen_page;
}

int WINAPI to_wide(UINT page, DWORD flags, const char* text, int size, WCHAR* wide, int room) {
    static const auto real =
        system_function<decltype(::MultiByteToWideChar)>("kernel32", "MultiByteToWideChar");
    return real(in_chosen_page(page), flags, text, size, wide, room);
}

int WINAPI to_ansi(UINT page, DWORD flags, const WCHAR* wide, int size, char* text, int room,
                   const char* replacement, BOOL* replaced) {
    static const auto real =
        system_function<decltype(::WideCharToMultiByte)>("kernel32", "WideCharToMultiByte");
    return real(in_chosen_page(page), flags, wide, size, text, room, replacement, replaced);
}

BOOL WINAPI is_lead_byte(BYTE byte) {
    static const auto real =
        system_function<decltype(::IsDBCSLeadByteEx)>("kernel32", "IsDBCSLeadByteEx");
    return real(code_page(), byte);
}

BOOL WINAPI page_info(UINT page, CPINFO* info) {
    static const auto real = system_function<decltype(::GetCPInfo)>("kernel32", "GetCPInfo");
    return real(in_chosen_page(page), info);
}

} // namespace

#define CHOSEN(name, argument_bytes, function)                                                     \
    extern decltype(&::name) const pointer_to_##name IMPORT_POINTER(name, argument_bytes);         \
    decltype(&::name) const pointer_to_##name = &function;

extern "C" {
CHOSEN(GetACP, 0, code_page)
CHOSEN(MultiByteToWideChar, 24, to_wide)
CHOSEN(WideCharToMultiByte, 32, to_ansi)
CHOSEN(IsDBCSLeadByte, 4, is_lead_byte)
CHOSEN(GetCPInfo, 8, page_info)

// As the system answers for a drive that is connected to a share.
DWORD WINAPI WNetGetUniversalNameA(const char* path, DWORD level, void* buffer, DWORD* size) {
    const std::string text = path;
    const auto drive = drive_shares.find(text.substr(0, 2));
    if (drive == drive_shares.end() || level != UNIVERSAL_NAME_INFO_LEVEL) {
        return ERROR_NOT_CONNECTED;
    }
    const std::string name = drive->second + text.substr(2);
    if (*size < sizeof(UNIVERSAL_NAME_INFOA) + name.size() + 1) {
        return ERROR_MORE_DATA;
    }
    auto* const info = static_cast<UNIVERSAL_NAME_INFOA*>(buffer);
    info->lpUniversalName = reinterpret_cast<char*>(info + 1);
    std::copy_n(name.c_str(), name.size() + 1, info->lpUniversalName);
    return NO_ERROR;
}
}

namespace platform {

bool set_ansi_code_page(std::uint32_t page) {
    const bool known = IsValidCodePage(page) != FALSE;
    if (known) {
        chosen_page = page;
    }
    return known;
}

// A drive that is a share, for the name of a path on it. What lies at a folder is the system's own.
bool map_drive(const std::string& entry) {
    const std::size_t equals = entry.find("=\\\\");
    if (equals == std::string::npos) {
        return false;
    }
    drive_shares[entry.substr(0, equals)] = entry.substr(equals + 1);
    return true;
}

} // namespace platform

// What the plug-in imports from the host library: the 64-bit link id and the query for a
// presentation's version. Declarations only; the host provides the functions. On 32-bit Windows
// they are bound by their decorated names (_v_id64Set@8 and so on) from Trellismender.dll;
// elsewhere by the names below. host/ holds a stand-in.
#pragma once

#include "platform/platform.h"

#if defined(_WIN32)
#define HOSTAPI_CALL __stdcall
#else
#define HOSTAPI_CALL
#endif

extern "C" {

// A link id: 8 bytes whose meaning is the host's. The plug-in copies and compares it only through
// the functions below. "Clear" is the value that v_id64Set gives for the argument 1.
struct id64 {
    std::uint32_t word[2];
};

// Sets `id` to the value that the host keeps for `kind`; the plug-in passes 1, which makes the id
// clear. `id` is not null.
void HOSTAPI_CALL v_id64Set(id64* id, std::int32_t kind);

// Reads an id from the start of `text` and ignores what follows it. A text that does not begin with
// an id makes the id clear. Neither argument is null.
void HOSTAPI_CALL v_id64FromStr(id64* id, const char* text);

// Writes the text form of `id`, at most 19 characters and a terminator for ids that the host hands
// out, into `text`, which holds at least 32 bytes.
void HOSTAPI_CALL v_id64ToStr(const id64* id, char* text);

// 1 when `id` is clear, else 0.
std::int32_t HOSTAPI_CALL b_id64IsClear(const id64* id);

// Copies `source` to `destination`.
void HOSTAPI_CALL v_id64Move(id64* destination, const id64* source);

// The version of the presentation in `root`, an open compound file that stays the caller's: a
// number that grows from version to version, compared with the ceiling of j_initDLL. 0 when the
// file does not tell. The plug-in opens "Current User" right after the call, so the function
// releases every stream that it opened.
std::int32_t HOSTAPI_CALL j_getPowerPointVersion(IStorage* root);
}

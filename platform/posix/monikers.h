// Monikers as the plug-in asks for them: whether a display name leads to a file, with or without an
// item behind it.
//
// A display name is a path, or a path, '!' and an item, or several items behind one another. The
// path is the longest beginning of the name, whole or ending before a '!', that names an existing
// file or folder; which items a file really has is its application's business, so every item that
// is not empty is taken.
#pragma once

#include "platform/posix/storage.h"

inline constexpr HRESULT MK_E_SYNTAX = hresult(0x800401E4);
inline constexpr HRESULT MK_E_CANTOPENFILE = hresult(0x800401EA);

inline constexpr IID IID_IBindCtx{0x0000000E, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IMoniker{0x0000000F, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct IBindCtx : IUnknown {};

struct IMoniker : IUnknown {
    // The name that the moniker was parsed from, allocated with CoTaskMemAlloc.
    virtual HRESULT GetDisplayName(IBindCtx* context, IMoniker* left, WCHAR** name) = 0;
};

// A moniker of that name; whether there is such a file is not looked at.
HRESULT CreateFileMoniker(const WCHAR* name, IMoniker** moniker);

HRESULT CreateBindCtx(DWORD reserved, IBindCtx** context);

// S_OK with all units eaten; MK_E_CANTOPENFILE when no beginning of the name is an existing file,
// MK_E_SYNTAX for an empty item. Cost: one look-up for each '!' of the name.
HRESULT MkParseDisplayName(IBindCtx* context, const WCHAR* name, ULONG* eaten, IMoniker** moniker);

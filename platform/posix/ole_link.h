// Linked OLE objects as the plug-in calls them: loading one from its storage, asking for its
// source, giving it a new one and saving it. Implemented over platform/ole_link/.
//
// Differences from Windows that a caller can meet: no application is started, so an update only
// makes sure that the source's file is there (settings.h can waive even that) and leaves cached
// pictures as they are; an object is saved where it was loaded from; members that the plug-in does
// not call give E_NOTIMPL.
#pragma once

#include "platform/posix/monikers.h"
#include "platform/posix/storage.h"

inline constexpr DWORD MEMCTX_TASK = 1;

inline constexpr IID IID_IMalloc{0x00000002, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IPersistStorage{0x0000010A, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IOleLink{0x0000011D, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct IMalloc : IUnknown {
    virtual void* Alloc(std::size_t size) = 0;
    virtual void Free(void* memory) = 0;
};

struct IOleLink : IUnknown {
    virtual HRESULT SetUpdateOptions(DWORD options) = 0;
    virtual HRESULT GetUpdateOptions(DWORD* options) = 0;
    virtual HRESULT SetSourceMoniker(IMoniker* source, REFCLSID clsid) = 0;
    virtual HRESULT GetSourceMoniker(IMoniker** source) = 0;
    // The file's path, or the path, '!' and an item. A path that does not exist is taken all the
    // same, `Update` tells. MK_E_SYNTAX for an empty item.
    virtual HRESULT SetSourceDisplayName(const WCHAR* name) = 0;
    // Allocated with CoTaskMemAlloc; E_FAIL when the source's moniker is of an unknown class.
    virtual HRESULT GetSourceDisplayName(WCHAR** name) = 0;
    virtual HRESULT BindToSource(DWORD flags, IBindCtx* context) = 0;
    virtual HRESULT BindIfRunning() = 0;
    virtual HRESULT GetBoundSource(IUnknown** source) = 0;
    virtual HRESULT UnbindSource() = 0;
    // MK_E_CANTOPENFILE when the source's file is not found. `context` may be null.
    virtual HRESULT Update(IBindCtx* context) = 0;
};

struct IPersistStorage : IUnknown {
    virtual HRESULT GetClassID(CLSID* clsid) = 0;
    virtual HRESULT IsDirty() = 0;
    virtual HRESULT InitNew(IStorage* storage) = 0;
    virtual HRESULT Load(IStorage* storage) = 0;
    // Writes the object's OLE stream when the object was given a new source, and nothing else.
    // `same_as_load` must be true.
    virtual HRESULT Save(IStorage* storage, BOOL same_as_load) = 0;
    virtual HRESULT SaveCompleted(IStorage* storage) = 0;
    virtual HRESULT HandsOffStorage() = 0;
};

struct IOleClientSite : IUnknown {};

// The linked object in the storage. STG_E_FILENOTFOUND without an OLE
// stream, STG_E_DOCFILECORRUPT when that is damaged, E_NOINTERFACE for an embedded object. The
// client site is not used.
HRESULT OleLoad(IStorage* storage, REFIID iid, IOleClientSite* site, void** object);

// Saves the object into the storage and commits it.
HRESULT OleSave(IPersistStorage* object, IStorage* storage, BOOL same_as_load);

// The allocator behind CoTaskMemAlloc.
HRESULT CoGetMalloc(DWORD context, IMalloc** allocator);

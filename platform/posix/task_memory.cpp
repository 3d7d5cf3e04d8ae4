// The task allocator, its face as an object, and the PROPVARIANTs whose texts and blobs come from
// it.
#include "platform/posix/ole_link.h"
#include "platform/posix/property_storage.h"

#include <cstdlib>

namespace {

// The one allocator, which lives as long as the process.
class TaskAllocator final : public IMalloc {
  public:
    HRESULT QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) {
            return E_POINTER;
        }
        const bool known = iid == IID_IUnknown || iid == IID_IMalloc;
        *object = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    void* Alloc(std::size_t size) override { return CoTaskMemAlloc(size); }
    void Free(void* memory) override { CoTaskMemFree(memory); }
};

TaskAllocator task_allocator;

} // namespace

HRESULT CoGetMalloc(DWORD context, IMalloc** allocator) {
    if (context != MEMCTX_TASK || allocator == nullptr) {
        return E_INVALIDARG;
    }
    *allocator = &task_allocator;
    return S_OK;
}

HRESULT PropVariantClear(PROPVARIANT* value) {
    if (value == nullptr) {
        return S_OK;
    }
    switch (value->vt) {
    case VT_LPSTR:
        CoTaskMemFree(value->pszVal);
        break;
    case VT_LPWSTR:
        CoTaskMemFree(value->pwszVal);
        break;
    case VT_BLOB:
        CoTaskMemFree(value->blob.pBlobData);
        break;
    case VT_CF:
        if (value->pclipdata != nullptr) {
            CoTaskMemFree(value->pclipdata->pClipData);
        }
        CoTaskMemFree(value->pclipdata);
        break;
    default:
        break;
    }
    *value = PROPVARIANT{};
    return S_OK;
}

void* CoTaskMemAlloc(std::size_t size) {
    return std::malloc(size > 0 ? size : 1);
}

void CoTaskMemFree(void* memory) {
    std::free(memory);
}

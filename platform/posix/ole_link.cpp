// Loading and saving linked objects, and the task allocator as an object.
#include "platform/posix/ole_link.h"

#include "platform/posix/error_codes.h"
#include "platform/posix/ole_link_object.h"
#include "platform/posix/property_storage.h"

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

HRESULT OleLoad(IStorage* storage, REFIID iid, IOleClientSite*, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    if (storage == nullptr) {
        return E_INVALIDARG;
    }
    return platform::guarded([&] { return platform::make_ole_link(storage, iid, object); });
}

HRESULT OleSave(IPersistStorage* object, IStorage* storage, BOOL same_as_load) {
    if (object == nullptr || storage == nullptr) {
        return E_INVALIDARG;
    }
    const HRESULT result = object->Save(storage, same_as_load);
    return FAILED(result) ? result : storage->Commit(STGC_DEFAULT);
}

HRESULT CoGetMalloc(DWORD context, IMalloc** allocator) {
    if (context != MEMCTX_TASK || allocator == nullptr) {
        return E_INVALIDARG;
    }
    *allocator = &task_allocator;
    return S_OK;
}

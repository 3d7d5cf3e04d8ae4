// Loading and saving linked objects.
#include "platform/platform.h"

#include "platform/adapters/error_codes.h"
#include "platform/adapters/ole_link_object.h"

HRESULT STDAPICALLTYPE OleLoad(IStorage* storage, REFIID iid, IOleClientSite*, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    if (storage == nullptr) {
        return E_INVALIDARG;
    }
    return platform::guarded([&] { return platform::make_ole_link(storage, iid, object); });
}

HRESULT STDAPICALLTYPE OleSave(IPersistStorage* object, IStorage* storage, BOOL same_as_load) {
    if (object == nullptr || storage == nullptr) {
        return E_INVALIDARG;
    }
    const HRESULT result = object->Save(storage, same_as_load);
    return FAILED(result) ? result : storage->Commit(STGC_DEFAULT);
}

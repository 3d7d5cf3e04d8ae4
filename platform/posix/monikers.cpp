// Bind contexts and file monikers, as far as the plug-in holds them.
#include "platform/posix/monikers.h"

#include "platform/adapters/com_object.h"
#include "platform/posix/property_storage.h"

#include <cstring>
#include <new>
#include <string>

namespace platform {

namespace {

class BindContext final : public ComObject<IBindCtx> {
  public:
    HRESULT QueryInterface(REFIID iid, void** object) override {
        return answer(iid, object, {IID_IBindCtx});
    }
};

class FileMoniker final : public ComObject<IMoniker> {
  public:
    explicit FileMoniker(std::u16string name)
        : name_(std::move(name)) {}

    HRESULT QueryInterface(REFIID iid, void** object) override {
        return answer(iid, object, {IID_IMoniker});
    }

    HRESULT GetDisplayName(IBindCtx*, IMoniker*, WCHAR** name) override {
        const std::size_t size = (name_.size() + 1) * sizeof(WCHAR);
        *name = static_cast<WCHAR*>(CoTaskMemAlloc(size));
        if (*name == nullptr) {
            return E_OUTOFMEMORY;
        }
        std::memcpy(*name, name_.c_str(), size);
        return S_OK;
    }

  private:
    std::u16string name_;
};

} // namespace

} // namespace platform

HRESULT CreateBindCtx(DWORD reserved, IBindCtx** context) {
    if (reserved != 0 || context == nullptr) {
        return E_INVALIDARG;
    }
    *context = new (std::nothrow) platform::BindContext;
    return *context == nullptr ? E_OUTOFMEMORY : S_OK;
}

HRESULT CreateFileMoniker(const WCHAR* name, IMoniker** moniker) {
    if (name == nullptr || moniker == nullptr) {
        return E_INVALIDARG;
    }
    *moniker = nullptr;
    try {
        *moniker = new platform::FileMoniker(name);
        return S_OK;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

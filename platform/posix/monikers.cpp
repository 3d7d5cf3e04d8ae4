#include "platform/posix/monikers.h"

#include "platform/posix/com_object.h"
#include "platform/posix/display_name.h"
#include "platform/posix/kernel.h"
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

bool exists(std::u16string_view path) {
    return attributes_of(path) != INVALID_FILE_ATTRIBUTES;
}

bool items_are_named(std::u16string_view items) {
    // `items` is empty or begins with its first '!'.
    return items.find(u"!!") == std::u16string_view::npos &&
           (items.empty() || items.back() != u'!');
}

HRESULT parse(std::u16string_view name) {
    std::size_t length = name.size();
    while (!exists(name.substr(0, length))) {
        const std::size_t delimiter =
            length == 0 ? std::u16string_view::npos : name.rfind(u'!', length - 1);
        if (delimiter == std::u16string_view::npos) {
            return MK_E_CANTOPENFILE;
        }
        length = delimiter;
    }
    return items_are_named(name.substr(length)) ? S_OK : MK_E_SYNTAX;
}

} // namespace

} // namespace platform

HRESULT CreateBindCtx(DWORD reserved, IBindCtx** context) {
    if (reserved != 0 || context == nullptr) {
        return E_INVALIDARG;
    }
    *context = new (std::nothrow) platform::BindContext;
    return *context == nullptr ? E_OUTOFMEMORY : S_OK;
}

HRESULT MkParseDisplayName(IBindCtx* context, const WCHAR* name, ULONG* eaten, IMoniker** moniker) {
    if (context == nullptr || name == nullptr || *name == 0 || eaten == nullptr ||
        moniker == nullptr) {
        return E_INVALIDARG;
    }
    *eaten = 0;
    *moniker = nullptr;
    try {
        std::u16string whole = name;
        const HRESULT result = platform::parse(whole);
        if (result == S_OK) {
            *eaten = static_cast<ULONG>(whole.size());
            *moniker = new platform::FileMoniker(std::move(whole));
        }
        return result;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

// What every COM object of this layer shares: the reference count (one on construction, the object
// deletes itself with the last) and the answer to QueryInterface. Objects belong to one thread, as
// the engines do, so the count is a plain number.
#pragma once

#include "platform/platform.h"

#include <algorithm>
#include <initializer_list>

namespace platform {

template <class Interface>
class ComObject : public Interface {
  public:
    ComObject() = default;
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }

    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG remaining = --references_;
        if (remaining == 0) {
            delete this;
        }
        return remaining;
    }

  protected:
    virtual ~ComObject() = default;

    // Hands out this object for IUnknown and for the given interfaces, which must all be
    // `Interface` or one of its bases.
    HRESULT answer(REFIID iid, void** object, std::initializer_list<IID> interfaces) {
        if (object == nullptr) {
            return E_POINTER;
        }
        const bool known = iid == IID_IUnknown ||
                           std::find(interfaces.begin(), interfaces.end(), iid) != interfaces.end();
        *object = known ? static_cast<Interface*>(this) : nullptr;
        if (!known) {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }

  private:
    ULONG references_ = 1;
};

} // namespace platform

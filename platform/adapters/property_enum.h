// The enumerator of a property section: the list as it was when it was asked for.
#pragma once

#include "platform/adapters/com_object.h"
#include "platform/platform.h"
#include "platform/property_set/section.h"

#include <vector>

namespace platform {

class PropertyEnumerator final : public ComObject<IEnumSTATPROPSTG> {
  public:
    explicit PropertyEnumerator(std::vector<property_set::PropertyInfo> properties)
        : properties_(std::move(properties)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        return answer(iid, object, {IID_IEnumSTATPROPSTG});
    }

    // S_FALSE when fewer are left than asked. `fetched` may be null when one is asked for.
    HRESULT STDMETHODCALLTYPE Next(ULONG count, STATPROPSTG* properties, ULONG* fetched) override;
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) override;
    HRESULT STDMETHODCALLTYPE Reset() override;
    HRESULT STDMETHODCALLTYPE Clone(IEnumSTATPROPSTG** clone) override;

  private:
    std::vector<property_set::PropertyInfo> properties_;
    std::size_t next_ = 0;
};

} // namespace platform

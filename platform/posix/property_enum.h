// The enumerator of a property section: the list as it was when it was asked for.
#pragma once

#include "platform/posix/com_object.h"
#include "platform/posix/property_storage.h"
#include "platform/property_set/section.h"

#include <vector>

namespace platform {

class PropertyEnumerator final : public ComObject<IEnumSTATPROPSTG> {
  public:
    explicit PropertyEnumerator(std::vector<property_set::PropertyInfo> properties)
        : properties_(std::move(properties)) {}

    HRESULT QueryInterface(REFIID iid, void** object) override {
        return answer(iid, object, {IID_IEnumSTATPROPSTG});
    }

    // S_FALSE when fewer are left than asked. `fetched` may be null when one is asked for.
    HRESULT Next(ULONG count, STATPROPSTG* properties, ULONG* fetched) override;
    HRESULT Skip(ULONG count) override;
    HRESULT Reset() override;
    HRESULT Clone(IEnumSTATPROPSTG** clone) override;

  private:
    std::vector<property_set::PropertyInfo> properties_;
    std::size_t next_ = 0;
};

} // namespace platform

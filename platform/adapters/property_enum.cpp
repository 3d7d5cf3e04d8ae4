// See property_enum.h.
#include "platform/adapters/property_enum.h"

#include "platform/adapters/error_codes.h"
#include "platform/adapters/statstg.h"

#include <algorithm>

namespace platform {

HRESULT STDMETHODCALLTYPE PropertyEnumerator::Next(ULONG count, STATPROPSTG* properties,
                                                   ULONG* fetched) {
    if (properties == nullptr || (fetched == nullptr && count != 1)) {
        return STG_E_INVALIDPOINTER;
    }
    const std::size_t given = std::min<std::size_t>(count, properties_.size() - next_);
    std::fill_n(properties, count, STATPROPSTG{});
    const HRESULT result = guarded([&] {
        for (std::size_t i = 0; i < given; ++i) {
            const property_set::PropertyInfo& info = properties_[next_ + i];
            properties[i].propid = info.id;
            properties[i].vt = info.type;
            properties[i].lpwstrName = info.name ? task_memory_copy(*info.name) : nullptr;
        }
        return given == count ? S_OK : S_FALSE;
    });
    if (FAILED(result)) {
        for (ULONG i = 0; i < count; ++i) {
            CoTaskMemFree(properties[i].lpwstrName);
            properties[i] = STATPROPSTG{};
        }
        return result;
    }
    next_ += given;
    if (fetched != nullptr) {
        *fetched = static_cast<ULONG>(given);
    }
    return result;
}

HRESULT STDMETHODCALLTYPE PropertyEnumerator::Skip(ULONG count) {
    const std::size_t skipped = std::min<std::size_t>(count, properties_.size() - next_);
    next_ += skipped;
    return skipped == count ? S_OK : S_FALSE;
}

HRESULT STDMETHODCALLTYPE PropertyEnumerator::Reset() {
    next_ = 0;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE PropertyEnumerator::Clone(IEnumSTATPROPSTG** clone) {
    if (clone == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    return guarded([&] {
        auto* copy = new PropertyEnumerator(properties_);
        copy->next_ = next_;
        *clone = copy;
        return S_OK;
    });
}

} // namespace platform

// See property_storage_object.h.
#include "platform/adapters/property_storage_object.h"

#include "platform/adapters/error_codes.h"
#include "platform/adapters/property_enum.h"
#include "platform/adapters/property_stream.h"
#include "platform/adapters/property_variant.h"
#include "platform/adapters/statstg.h"

#include <algorithm>
#include <string>
#include <vector>

namespace platform {
namespace {

using property_set::PropertyKey;

PropertyKey key_of(const PROPSPEC& spec) {
    if (spec.ulKind == PRSPEC_PROPID) {
        return spec.propid;
    }
    if (spec.ulKind != PRSPEC_LPWSTR || spec.lpwstr == nullptr) {
        throw Error(Errc::invalid_argument,
                    "property named by kind " + std::to_string(spec.ulKind));
    }
    return units_of(spec.lpwstr);
}

// Whether an array of `count` items may be read.
bool given(ULONG count, const void* items) {
    return count == 0 || items != nullptr;
}

} // namespace

PropertyStorage::~PropertyStorage() {
    // Nobody is left to be told of a failure; who wants to know calls Commit before.
    static_cast<void>(guarded([this] { return write_changes(); }));
}

HRESULT PropertyStorage::write_changes() {
    if (!set_.changed()) {
        return S_OK;
    }
    bytes::Bytes content = set_.encode();
    const HRESULT result = write_property_stream(*stream_.get(), content);
    if (SUCCEEDED(result)) {
        set_ = set_.reopened(std::move(content));
    }
    return result;
}

HRESULT STDMETHODCALLTYPE PropertyStorage::ReadMultiple(ULONG count, const PROPSPEC* specs,
                                                        PROPVARIANT* values) {
    if (!given(count, specs) || !given(count, values)) {
        return STG_E_INVALIDPOINTER;
    }
    std::fill_n(values, count, PROPVARIANT{});
    const HRESULT result = guarded([&] {
        bool any = false;
        for (ULONG i = 0; i < count; ++i) {
            if (const auto value = set_.section().read(key_of(specs[i]))) {
                values[i] = variant_of(*value);
                any = true;
            }
        }
        return any ? S_OK : S_FALSE;
    });
    if (FAILED(result)) {
        std::for_each(values, values + count, [](PROPVARIANT& value) { PropVariantClear(&value); });
    }
    return result;
}

HRESULT STDMETHODCALLTYPE PropertyStorage::WriteMultiple(ULONG count, const PROPSPEC* specs,
                                                         const PROPVARIANT* values,
                                                         PROPID first_new_id) {
    if (!given(count, specs) || !given(count, values)) {
        return STG_E_INVALIDPOINTER;
    }
    return guarded([&] {
        std::vector<property_set::Assignment> assignments;
        assignments.reserve(count);
        for (ULONG i = 0; i < count; ++i) {
            assignments.push_back({key_of(specs[i]), value_of(values[i])});
        }
        set_.write(assignments, first_new_id);
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE PropertyStorage::DeleteMultiple(ULONG count, const PROPSPEC* specs) {
    if (!given(count, specs)) {
        return STG_E_INVALIDPOINTER;
    }
    return guarded([&] {
        std::vector<PropertyKey> keys;
        std::transform(specs, specs + count, std::back_inserter(keys), key_of);
        set_.section().remove(keys);
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE PropertyStorage::ReadPropertyNames(ULONG count, const PROPID* ids,
                                                             WCHAR** names) {
    if (!given(count, ids) || !given(count, names)) {
        return STG_E_INVALIDPOINTER;
    }
    std::fill_n(names, count, nullptr);
    const HRESULT result = guarded([&] {
        bool any = false;
        for (ULONG i = 0; i < count; ++i) {
            if (const std::u16string* name = set_.section().name_of(ids[i])) {
                names[i] = task_memory_copy(*name);
                any = true;
            }
        }
        return any ? S_OK : S_FALSE;
    });
    if (FAILED(result)) {
        for (ULONG i = 0; i < count; ++i) {
            CoTaskMemFree(std::exchange(names[i], nullptr));
        }
    }
    return result;
}

HRESULT STDMETHODCALLTYPE PropertyStorage::WritePropertyNames(ULONG count, const PROPID* ids,
                                                              WCHAR* const* names) {
    if (!given(count, ids) || !given(count, names) ||
        std::find(names, names + count, nullptr) != names + count) {
        return STG_E_INVALIDPOINTER;
    }
    return guarded([&] {
        std::vector<property_set::Naming> namings;
        for (ULONG i = 0; i < count; ++i) {
            namings.push_back({ids[i], units_of(names[i])});
        }
        set_.section().rename(namings);
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE PropertyStorage::DeletePropertyNames(ULONG count, const PROPID* ids) {
    if (!given(count, ids)) {
        return STG_E_INVALIDPOINTER;
    }
    return guarded([&] {
        set_.section().remove_names(std::vector<property_set::PropertyId>(ids, ids + count));
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE PropertyStorage::Commit(DWORD) {
    return guarded([this] { return write_changes(); });
}

HRESULT STDMETHODCALLTYPE PropertyStorage::Revert() {
    return guarded([this] {
        set_ = set_.reverted();
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE PropertyStorage::Enum(IEnumSTATPROPSTG** properties) {
    if (properties == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    return guarded([&] {
        *properties = new PropertyEnumerator(set_.section().list());
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE PropertyStorage::SetTimes(const FILETIME*, const FILETIME*,
                                                    const FILETIME*) {
    return STG_E_INVALIDFUNCTION;
}

HRESULT STDMETHODCALLTYPE PropertyStorage::SetClass(REFCLSID) {
    return STG_E_INVALIDFUNCTION;
}

HRESULT STDMETHODCALLTYPE PropertyStorage::Stat(STATPROPSETSTG* stat) {
    if (stat == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    *stat = STATPROPSETSTG{};
    stat->fmtid = format_;
    stat->clsid = class_id_of(set_.layout().class_id);
    stat->dwOSVersion = set_.layout().system_id;
    return S_OK;
}

} // namespace platform

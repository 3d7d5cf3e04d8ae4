// IPropertyStorage over one section of a property set stream. The stream is read when the section
// is opened and written at Commit, each time as a whole; in between all changes are in memory.
//
// Invariant: `set_` was opened on, or made from, the bytes that the stream holds, unless a commit
// failed half-way.
#pragma once

#include "platform/adapters/com_object.h"
#include "platform/base/com_ptr.h"
#include "platform/platform.h"
#include "platform/property_set/property_set.h"

namespace platform {

class PropertyStorage final : public ComObject<IPropertyStorage> {
  public:
    PropertyStorage(ComPtr<IStream> stream, REFFMTID format, property_set::PropertySet set)
        : stream_(std::move(stream))
        , format_(format)
        , set_(std::move(set)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        return answer(iid, object, {IID_IPropertyStorage});
    }

    HRESULT STDMETHODCALLTYPE ReadMultiple(ULONG count, const PROPSPEC* specs,
                                           PROPVARIANT* values) override;
    HRESULT STDMETHODCALLTYPE WriteMultiple(ULONG count, const PROPSPEC* specs,
                                            const PROPVARIANT* values,
                                            PROPID first_new_id) override;
    HRESULT STDMETHODCALLTYPE DeleteMultiple(ULONG count, const PROPSPEC* specs) override;
    HRESULT STDMETHODCALLTYPE ReadPropertyNames(ULONG count, const PROPID* ids,
                                                WCHAR** names) override;
    HRESULT STDMETHODCALLTYPE WritePropertyNames(ULONG count, const PROPID* ids,
                                                 WCHAR* const* names) override;
    HRESULT STDMETHODCALLTYPE DeletePropertyNames(ULONG count, const PROPID* ids) override;
    HRESULT STDMETHODCALLTYPE Commit(DWORD flags) override;
    // Drops what was changed since the last commit.
    HRESULT STDMETHODCALLTYPE Revert() override;
    HRESULT STDMETHODCALLTYPE Enum(IEnumSTATPROPSTG** properties) override;
    // The stream's header holds no times and its class id is never changed: both are refused.
    HRESULT STDMETHODCALLTYPE SetTimes(const FILETIME* created, const FILETIME* accessed,
                                       const FILETIME* modified) override;
    HRESULT STDMETHODCALLTYPE SetClass(REFCLSID clsid) override;
    HRESULT STDMETHODCALLTYPE Stat(STATPROPSETSTG* stat) override;

  private:
    // Writes what was not committed. Only Commit can report a failure of it.
    ~PropertyStorage() override;

    HRESULT write_changes();

    ComPtr<IStream> stream_;
    FMTID format_;
    property_set::PropertySet set_;
};

} // namespace platform

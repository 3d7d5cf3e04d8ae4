// Opening sections of property set streams: the two functions that hand out IPropertyStorage.
#include "platform/platform.h"

#include "platform/adapters/error_codes.h"
#include "platform/adapters/property_storage_object.h"
#include "platform/adapters/property_stream.h"
#include "platform/adapters/statstg.h"

namespace {

using platform::PropertyStorage;
using property_set::PropertySet;

using Opener = PropertySet (*)(bytes::Bytes, const property_set::FormatId&, std::uint32_t);

HRESULT open_with(Opener opener, IUnknown* unknown, REFFMTID fmtid, DWORD flags, DWORD reserved,
                  IPropertyStorage** storage) {
    if (storage == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    *storage = nullptr;
    if (unknown == nullptr || reserved != 0) {
        return STG_E_INVALIDPARAMETER;
    }
    if (flags != 0) {
        return STG_E_INVALIDFLAG;
    }
    ComPtr<IStream> stream;
    if (const HRESULT result = unknown->QueryInterface(IID_IStream, stream.put_void());
        FAILED(result)) {
        return result;
    }
    return platform::guarded([&] {
        bytes::Bytes content;
        const HRESULT result = platform::read_property_stream(*stream.get(), content);
        if (SUCCEEDED(result)) {
            PropertySet set =
                opener(std::move(content), platform::stored_class_id(fmtid), GetACP());
            *storage = new PropertyStorage(std::move(stream), fmtid, std::move(set));
        }
        return result;
    });
}

} // namespace

HRESULT STDAPICALLTYPE StgOpenPropStg(IUnknown* unknown, REFFMTID fmtid, DWORD flags,
                                      DWORD reserved, IPropertyStorage** storage) {
    return open_with(PropertySet::open, unknown, fmtid, flags, reserved, storage);
}

HRESULT STDAPICALLTYPE StgCreatePropStg(IUnknown* unknown, REFFMTID fmtid, const CLSID* clsid,
                                        DWORD flags, DWORD reserved, IPropertyStorage** storage) {
    if (clsid != nullptr && !(*clsid == CLSID{})) {
        return STG_E_INVALIDPARAMETER;
    }
    return open_with(PropertySet::create, unknown, fmtid, flags, reserved, storage);
}

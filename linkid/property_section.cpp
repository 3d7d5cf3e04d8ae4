#include "linkid/property_section.h"

#include "common_new/SafeFunc/split_path.h"
#include "common_new/common/conversion.h"
#include "common_new/common/storage.h"
#include "plugin/failure.h"
#include "plugin/link_record.h"
#include "plugin/status.h"
#include "reader/readable_size.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace ppt {

namespace {

constexpr std::size_t kNameSize = 260;
constexpr const WCHAR* kStreamName = WIDE("\005DocumentSummaryInformation");

void throw_com_failure(HRESULT result) {
    if (result != S_OK) {
        throw static_cast<int>(j_translateComError(result));
    }
}

// A name handed out by the enumerator.
struct PropertyName {
    ~PropertyName() { CoTaskMemFree(stat.lpwstrName); }
    STATPROPSTG stat{};
};

} // namespace

std::uint64_t PropertyValue::size() const {
    switch (value_.vt) {
    case VT_LPSTR:
        return value_.pszVal == nullptr ? 0 : std::strlen(value_.pszVal);
    case VT_LPWSTR:
        return value_.pwszVal == nullptr
                   ? 0
                   : sizeof(WCHAR) * std::char_traits<WCHAR>::length(value_.pwszVal);
    case VT_BLOB:
        return value_.blob.cbSize;
    case VT_CF:
        return value_.pclipdata == nullptr ? 0 : value_.pclipdata->cbSize;
    default:
        return 0;
    }
}

bool PropertyValue::get_text(std::string& text) const {
    if (value_.vt == VT_LPSTR && value_.pszVal != nullptr) {
        text = whole_characters(value_.pszVal, kLinkTextLimit - 1);
        return true;
    }
    if (value_.vt == VT_LPWSTR && value_.pwszVal != nullptr) {
        std::array<char, kLinkTextLimit> ansi{};
        require_success(
            j_wideToAnsi(value_.pwszVal, -1, ansi.data(), static_cast<std::int32_t>(ansi.size())));
        text = ansi.data();
        return true;
    }
    return false;
}

bool PropertySection::open_for_reading(IStorage* root) {
    const std::int32_t status = j_openStream(root, kStreamName, true, stream_.put());
    if (status == status::kElementMissing) {
        return false;
    }
    require_success(status);
    const HRESULT result =
        StgOpenPropStg(stream_.get(), FMTID_UserDefinedProperties, 0, 0, section_.put());
    if (result == STG_E_FILENOTFOUND) {
        return false;
    }
    throw_com_failure(result);
    return true;
}

void PropertySection::open_for_writing(IStorage* root) {
    std::int32_t status = j_openStream(root, kStreamName, false, stream_.put());
    if (status == status::kElementMissing) {
        status = j_translateComError(root->CreateStream(
            kStreamName, STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0, 0, stream_.put()));
    }
    require_success(status);
    const HRESULT opened =
        StgOpenPropStg(stream_.get(), FMTID_UserDefinedProperties, 0, 0, section_.put());
    if (FAILED(opened)) {
        // What could not be read for another reason than its own is no section to be replaced.
        if (opened == STG_E_READFAULT) {
            throw_com_failure(opened);
        }
        require_memory_of(opened);
        throw_com_failure(StgCreatePropStg(stream_.get(), FMTID_UserDefinedProperties, nullptr, 0,
                                           0, section_.put()));
    }
}

std::uint64_t PropertySection::stream_size() const {
    STATSTG stat{};
    require_success(j_translateComError(stream_->Stat(&stat, STATFLAG_NONAME)));
    return stat.cbSize.QuadPart;
}

bool PropertySection::stream_is_cut() const {
    if (!stream_) {
        return false;
    }
    const std::uint64_t claimed = stream_size();
    const std::uint64_t readable = n_readableSize(stream_.get(), claimed);
    return readable > 0 && readable < claimed;
}

void PropertySection::for_each(const std::function<bool(const Name&, PROPID)>& visit) {
    ComPtr<IEnumSTATPROPSTG> properties;
    throw_com_failure(section_->Enum(properties.put()));
    for (;;) {
        PropertyName property;
        ULONG fetched = 0;
        const HRESULT result = properties->Next(1, &property.stat, &fetched);
        if (result != S_FALSE) {
            throw_com_failure(result);
        }
        if (fetched == 0) {
            return;
        }
        if (property.stat.lpwstrName == nullptr) {
            continue;
        }
        std::array<char, kNameSize> ansi{};
        const std::int32_t status = j_wideToAnsi(property.stat.lpwstrName, -1, ansi.data(),
                                                 static_cast<std::int32_t>(ansi.size()));
        if (status != status::kSuccess) {
            require_memory(status);
            continue;
        }
        const Name name{property.stat.lpwstrName, ansi.data()};
        if (!visit(name, property.stat.propid)) {
            return;
        }
    }
}

void PropertySection::read(const std::basic_string<WCHAR>& name, PropertyValue& value) {
    PROPSPEC spec{};
    spec.ulKind = PRSPEC_LPWSTR;
    spec.lpwstr = const_cast<WCHAR*>(name.c_str());
    const HRESULT result = section_->ReadMultiple(1, &spec, value.put());
    if (result != S_FALSE) {
        throw_com_failure(result);
    }
}

} // namespace ppt

#include "reader/ole_link_path.h"

#include "common_new/common/conversion.h"
#include "common_new/common/storage.h"
#include "plugin/checked_allocation.h"
#include "plugin/document_path.h"
#include "plugin/error_params.h"
#include "plugin/failure.h"
#include "plugin/link_record.h"
#include "plugin/status.h"
#include "reader/readable_size.h"

#include <algorithm>
#include <array>
#include <optional>

namespace ppt {

namespace {

constexpr std::int32_t kMonikerSizeOffset = 20;
constexpr std::uint64_t kLongestMoniker = std::uint64_t{1} << 20; // in bytes; paths take a thousand
constexpr std::int32_t kLimit = static_cast<std::int32_t>(kLinkTextLimit);

std::uint64_t size_of(IStream* stream) {
    STATSTG stat{};
    require_success(j_translateComError(stream->Stat(&stat, STATFLAG_NONAME)));
    return stat.cbSize.QuadPart;
}

// The data of the relative moniker and the two bytes behind it; empty when there is no moniker.
bytes::Bytes relative_moniker(IStorage* storage) {
    constexpr std::uint64_t kDataOffset = kMonikerSizeOffset + 4;
    constexpr std::uint64_t kBytesBehind = 2;
    ComPtr<IStream> stream;
    require_success(j_openStream(storage, WIDE("\001Ole"), true, stream.put()));
    require_success(j_seekStream("", stream.get(), kMonikerSizeOffset, 0));
    std::uint8_t raw_size[4] = {};
    require_success(j_readStream(stream.get(), raw_size, sizeof raw_size));
    const std::uint32_t size = bytes::load_u32(raw_size, 0);
    bytes::Bytes data;
    if (size == 0) {
        return data;
    }
    const std::uint64_t wanted = size + kBytesBehind;
    const std::uint64_t available =
        n_readableSize(stream.get(), size_of(stream.get())) - kDataOffset;
    if (wanted > available) {
        v_setErrorParamTextAndNumber(document_path(), static_cast<std::int32_t>(available));
        b_appendErrorParamNumber(static_cast<std::int32_t>(wanted));
        throw static_cast<int>(status::kShortRead);
    }
    if (wanted > kLongestMoniker) {
        v_setErrorParamNumbers(static_cast<std::int32_t>(wanted), kLongestMoniker);
        throw static_cast<int>(status::kDamaged);
    }
    resize_checked(data, static_cast<std::size_t>(wanted));
    require_success(j_readStream(stream.get(), data.data(), static_cast<std::int32_t>(wanted)));
    return data;
}

// The text up to its terminator or the end of the data.
std::string text_at(bytes::View data, std::size_t at) {
    const bytes::View text = data.subspan(std::min(at, data.size()));
    return {text.begin(), std::find(text.begin(), text.end(), std::uint8_t{0})};
}

std::string ansi_of_units(bytes::View data) {
    std::basic_string<WCHAR> units(data.size() / 2, WIDE('\0'));
    for (std::size_t i = 0; i < units.size(); ++i) {
        units[i] = static_cast<WCHAR>(bytes::load_u16(data, 2 * i));
    }
    std::string ansi(kLinkTextLimit + 1, '\0');
    if (!units.empty()) {
        require_success(j_wideToAnsi(units.data(), static_cast<std::int32_t>(units.size()),
                                     ansi.data(), kLimit));
    }
    return ansi.c_str();
}

// The moniker data as far as a path needs it: a file moniker, or one behind the heads of
// composites, and perhaps an item moniker behind it. Reads outside the data give nothing.
class MonikerData {
  public:
    explicit MonikerData(bytes::View data)
        : data_(data) {}

    // Nothing when the data is not understood.
    std::optional<std::string> path() const;

  private:
    std::uint32_t u16(std::size_t at) const { return value(at, 2) & 0xFFFF; }
    std::uint32_t u32(std::size_t at) const { return value(at, 4); }

    // 0 where the data ends before.
    std::uint32_t value(std::size_t at, std::size_t width) const {
        bytes::Cursor cursor(data_);
        cursor.seek(at);
        return width == 2 ? cursor.u16() : cursor.u32();
    }

    bytes::View data_;
};

std::optional<std::string> MonikerData::path() const {
    constexpr std::uint32_t kCompositeOfTwo = 2;
    constexpr std::uint32_t kFileInFolder = 1; // one step up, from the presentation to its folder
    constexpr std::size_t kCompositeHead = 20;
    constexpr std::uint32_t kWidePathLimit = 768;
    constexpr std::uint32_t kItemDelimiter = '!';

    std::size_t at = 18; // of the length of the file moniker's path
    while (u16(at - 2) == kCompositeOfTwo) {
        at += kCompositeHead;
    }
    if (u16(at - 2) != kFileInFolder) {
        return std::nullopt;
    }
    std::string path = text_at(data_, at + 4);
    const std::size_t behind_path = at + 32 + u32(at);
    const std::uint32_t wide_size = u32(behind_path);
    std::size_t item = behind_path + 20;
    const bool has_wide_path =
        wide_size > 0 && wide_size < kWidePathLimit && behind_path + 6 + wide_size <= data_.size();
    if (has_wide_path) {
        path = ansi_of_units(data_.subspan(behind_path + 6, wide_size));
        item = behind_path + wide_size + 26;
    }
    if (u16(item) == kItemDelimiter && u32(item + 2) > 0) {
        path += '!' + text_at(data_, item + 6);
    }
    return path;
}

// Empty when OLE has no name for the source.
std::string display_name(IStorage* storage) {
    ComPtr<IOleLink> link;
    const HRESULT loaded = OleLoad(storage, IID_IOleLink, nullptr, link.put_void());
    if (FAILED(loaded)) {
        throw static_cast<int>(j_translateComError(loaded));
    }
    std::array<char, kLinkTextLimit + 1> ansi{};
    WCHAR* name = nullptr;
    const HRESULT result = link->GetSourceDisplayName(&name);
    if (FAILED(result)) {
        require_memory_of(result);
        return {};
    }
    const std::int32_t converted = j_wideToAnsi(name, -1, ansi.data(), kLimit);
    ComPtr<IMalloc> allocator;
    if (SUCCEEDED(CoGetMalloc(MEMCTX_TASK, allocator.put()))) {
        allocator->Free(name);
    }
    if (converted != status::kSuccess) {
        require_memory(converted);
        return {};
    }
    return ansi.data();
}

} // namespace

std::int32_t n_getOleLinkPath(IStorage* storage, std::string* path) {
    if (storage == nullptr || path == nullptr) {
        throw static_cast<int>(status::kNullArgument);
    }
    const bytes::Bytes moniker = relative_moniker(storage);
    if (!moniker.empty()) {
        if (std::optional<std::string> relative = MonikerData(moniker).path()) {
            if (!b_checkLength(*relative, kLimit)) {
                throw static_cast<int>(status::kTextTooLong);
            }
            *path = std::move(*relative);
            return 1;
        }
    }
    *path = display_name(storage);
    return 0;
}

} // namespace ppt

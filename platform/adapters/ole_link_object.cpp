#include "platform/adapters/ole_link_object.h"

#include "platform/adapters/com_object.h"
#include "platform/adapters/display_name.h"
#include "platform/adapters/error_codes.h"
#include "platform/adapters/statstg.h"
#include "platform/base/com_ptr.h"
#include "platform/ole_link/link_stream.h"
#include "platform/platform.h"
#include "platform/posix/settings.h"

#include <optional>
#include <utility>

namespace platform {

namespace {

constexpr WCHAR kOleStream[] = WIDE("\001Ole");

bool targets_are_trusted = false;

HRESULT open_ole_stream(IStorage* storage, DWORD access, ComPtr<IStream>& stream) {
    return storage->OpenStream(kOleStream, nullptr, access | STGM_SHARE_EXCLUSIVE, 0, stream.put());
}

// Piece by piece, since a damaged storage may claim a stream that it does not hold. Monikers take
// some hundred bytes, and their stream is copied several times while its source changes.
HRESULT read_ole_stream(IStorage* storage, bytes::Bytes& data) {
    constexpr ULONG kPiece = 16 * 1024;
    constexpr std::size_t kMost = std::size_t{1} << 20;
    ComPtr<IStream> stream;
    HRESULT result = open_ole_stream(storage, STGM_READ, stream);
    ULONG read = kPiece;
    while (SUCCEEDED(result) && read == kPiece) {
        const std::size_t size = data.size();
        data.resize(size + kPiece);
        result = stream->Read(data.data() + size, kPiece, &read);
        data.resize(size + read);
        if (data.size() > kMost) {
            throw Error(Errc::corrupt, "OLE stream of " + std::to_string(data.size()) +
                                           " bytes or more, allowed " + std::to_string(kMost));
        }
    }
    return result;
}

HRESULT write_ole_stream(IStorage* storage, const bytes::Bytes& data) {
    ComPtr<IStream> stream;
    HRESULT result = open_ole_stream(storage, STGM_READWRITE, stream);
    if (FAILED(result)) {
        return result;
    }
    ULONG written = 0;
    result = stream->Write(data.data(), static_cast<ULONG>(data.size()), &written);
    if (SUCCEEDED(result) && written < data.size()) {
        result = STG_E_MEDIUMFULL;
    }
    return FAILED(result) ? result : stream->SetSize(large(data.size()));
}

struct LinkInterfaces : IOleLink, IPersistStorage {};

class OleLinkObject final : public ComObject<LinkInterfaces> {
  public:
    explicit OleLinkObject(ole_link::LinkStream stream)
        : stream_(std::move(stream))
        , source_(ole_link::parse_moniker(stream_.absolute_source())) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid == IID_IPersistStorage && object != nullptr) {
            *object = static_cast<IPersistStorage*>(this);
            AddRef();
            return S_OK;
        }
        return answer(iid, object, {IID_IOleLink});
    }

    HRESULT STDMETHODCALLTYPE SetSourceDisplayName(const WCHAR* name) override {
        if (name == nullptr) {
            return E_INVALIDARG;
        }
        return guarded([&] { return set_source(units_of(name)); });
    }

    HRESULT STDMETHODCALLTYPE GetSourceDisplayName(WCHAR** name) override {
        if (name == nullptr) {
            return E_POINTER;
        }
        *name = nullptr;
        if (!source_) {
            return E_FAIL;
        }
        return guarded([&] {
            *name = task_memory_copy(display_name(*source_));
            return S_OK;
        });
    }

    HRESULT STDMETHODCALLTYPE Update(IBindCtx*) override {
        if (targets_are_trusted) {
            return S_OK;
        }
        return guarded([&] {
            const bool found = source_ && source_->file && is_file(wide_text(*source_->file));
            return found ? S_OK : MK_E_CANTOPENFILE;
        });
    }

    HRESULT STDMETHODCALLTYPE Save(IStorage* storage, BOOL same_as_load) override {
        if (storage == nullptr || same_as_load == FALSE) {
            return E_INVALIDARG;
        }
        if (!is_changed_) {
            return S_OK;
        }
        return guarded([&] { return write_ole_stream(storage, stream_.serialise()); });
    }

    HRESULT STDMETHODCALLTYPE SetUpdateOptions(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetUpdateOptions(DWORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetSourceMoniker(IMoniker*, REFCLSID) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSourceMoniker(IMoniker**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE BindToSource(DWORD, IBindCtx*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE BindIfRunning() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetBoundSource(IUnknown**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE UnbindSource() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE IsDirty() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InitNew(IStorage*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Load(IStorage*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SaveCompleted(IStorage*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE HandsOffStorage() override { return E_NOTIMPL; }

  private:
    HRESULT set_source(std::u16string_view name) {
        ole_link::Moniker source = source_.value_or(ole_link::Moniker());
        const std::u16string known_items = display_name_of_items(source);
        const SourceName split = split_display_name(name, known_items);
        if (split.file.empty() || split.items.size() == 1) {
            return MK_E_SYNTAX;
        }
        source.file = stored_text(split.file);
        if (split.items != known_items) {
            source.items.clear();
        }
        if (source.items.empty() && !split.items.empty()) {
            source.items.push_back(ole_link::make_item(stored_text(split.items.substr(0, 1)),
                                                       stored_text(split.items.substr(1))));
        }
        stream_.set_absolute_source(ole_link::serialise(source));
        source_ = std::move(source);
        is_changed_ = true;
        return S_OK;
    }

    ole_link::LinkStream stream_;
    std::optional<ole_link::Moniker> source_; // nothing for a moniker of an unknown class
    bool is_changed_ = false;
};

} // namespace

HRESULT make_ole_link(IStorage* storage, REFIID iid, void** object) {
    bytes::Bytes data;
    const HRESULT result = read_ole_stream(storage, data);
    if (FAILED(result)) {
        return result;
    }
    ole_link::LinkStream stream = ole_link::LinkStream::parse(data);
    if (!stream.is_link()) {
        return E_NOINTERFACE;
    }
    const ComPtr<OleLinkObject> link(new OleLinkObject(std::move(stream)));
    return link->QueryInterface(iid, object);
}

void trust_link_targets(bool trust) {
    targets_are_trusted = trust;
}

} // namespace platform

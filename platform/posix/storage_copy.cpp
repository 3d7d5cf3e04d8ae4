// Copying of storages: CopyTo and MoveElementTo. The source is read through the engine, the
// destination is any IStorage. A storage that is copied stays open until everything below it has
// been copied, because its release would revert what was opened through it.
#include "platform/adapters/error_codes.h"
#include "platform/adapters/statstg.h"
#include "platform/base/com_ptr.h"
#include "platform/posix/storage_modes.h"
#include "platform/posix/storage_object.h"
#include "platform/posix/stream.h"

#include <span>
#include <vector>

namespace platform {

using compound_file::EntryId;
using compound_file::EntryInfo;
using compound_file::EntryType;

namespace {

constexpr DWORD kMoveFlag = 0; // STGMOVE_MOVE
constexpr DWORD kCopyFlag = 1; // STGMOVE_COPY
constexpr DWORD kDestinationMode = STGM_WRITE | STGM_SHARE_EXCLUSIVE;

// Copies out of one file. Depth is that of the storages in the file, kept on a stack of its own.
class TreeCopy {
  public:
    explicit TreeCopy(const std::shared_ptr<OpenElement>& source)
        : source_(source) {}

    HRESULT copy_stream(EntryId entry, const WCHAR* name, DWORD creation, IStorage& destination) {
        ComPtr<IStream> to;
        const HRESULT created =
            destination.CreateStream(name, kDestinationMode | creation, 0, 0, to.put());
        if (FAILED(created)) {
            return created;
        }
        const auto node = engine().stream(entry);
        const auto element = std::make_shared<OpenElement>(source_->file(), source_, entry);
        const ComPtr<IStream> from(
            new StreamObject(element, node, STGM_READ | STGM_SHARE_EXCLUSIVE));
        const ULARGE_INTEGER size{node->size()};
        ULARGE_INTEGER written{0};
        const HRESULT copied = from->CopyTo(to.get(), size, nullptr, &written);
        const bool is_short = SUCCEEDED(copied) && written.QuadPart < size.QuadPart;
        return is_short ? STG_E_MEDIUMFULL : copied;
    }

    // The attributes of the storage and the given elements of it, with all that is below.
    HRESULT copy_storage(EntryId storage, std::vector<EntryId> elements,
                         ComPtr<IStorage> destination) {
        HRESULT result = enter(storage, std::move(elements), std::move(destination));
        while (SUCCEEDED(result) && !frames_.empty()) {
            Frame& top = frames_.back();
            if (top.next == top.elements.size()) {
                frames_.pop_back();
            } else {
                result = copy_element(top.elements[top.next++], *top.destination.get());
            }
        }
        return result;
    }

  private:
    struct Frame {
        std::vector<EntryId> elements;
        std::size_t next = 0;
        ComPtr<IStorage> destination;
    };

    compound_file::CompoundFile& engine() { return source_->engine(); }

    HRESULT enter(EntryId storage, std::vector<EntryId> elements, ComPtr<IStorage> destination) {
        const EntryInfo info = engine().info(storage);
        HRESULT result = destination->SetClass(class_id_of(info.class_id));
        if (SUCCEEDED(result)) {
            result = destination->SetStateBits(info.state_bits, 0xFFFFFFFF);
        }
        frames_.push_back({std::move(elements), 0, std::move(destination)});
        return result;
    }

    HRESULT copy_element(EntryId entry, IStorage& destination) {
        const EntryInfo info = engine().info(entry);
        const WCHAR* name = info.name.c_str();
        if (info.type == EntryType::stream) {
            return copy_stream(entry, name, STGM_CREATE, destination);
        }
        ComPtr<IStorage> inner;
        HRESULT result =
            destination.OpenStorage(name, nullptr, kDestinationMode, nullptr, 0, inner.put());
        if (result == STG_E_FILENOTFOUND) { // what is there is merged, a stream is replaced
            result =
                destination.CreateStorage(name, kDestinationMode | STGM_CREATE, 0, 0, inner.put());
        }
        return FAILED(result) ? result : enter(entry, engine().children(entry), std::move(inner));
    }

    std::shared_ptr<OpenElement> source_;
    std::vector<Frame> frames_;
};

// What CopyTo leaves out of a storage's own elements.
class Exclusions {
  public:
    Exclusions(const compound_file::CompoundFile& engine, EntryId storage,
               std::span<const IID> kinds, WCHAR** names)
        : streams_(std::ranges::find(kinds, IID_IStream) != kinds.end())
        , storages_(std::ranges::find(kinds, IID_IStorage) != kinds.end()) {
        for (; names != nullptr && *names != nullptr; ++names) {
            entries_.push_back(engine.find(storage, *names));
        }
    }

    bool contain(EntryId entry, EntryType type) const {
        return (type == EntryType::stream ? streams_ : storages_) ||
               std::ranges::find(entries_, entry) != entries_.end();
    }

  private:
    bool streams_;
    bool storages_;
    std::vector<EntryId> entries_;
};

} // namespace

bool StorageObject::holds(IStorage& other) const {
    ComPtr<IStorage> own;
    other.QueryInterface(IID_StorageObject, own.put_void());
    if (!own) {
        return false;
    }
    const OpenElement& element = *static_cast<StorageObject&>(*own.get()).element_;
    return element.file() == element_->file() && element.is_inside(element_->entry());
}

HRESULT StorageObject::CopyTo(DWORD exclude_count, const IID* exclude, WCHAR** names,
                              IStorage* destination) {
    if (destination == nullptr || (exclude_count > 0 && exclude == nullptr)) {
        return STG_E_INVALIDPOINTER;
    }
    if (const HRESULT refused = check_readable(); FAILED(refused)) {
        return refused;
    }
    return guarded([&] {
        if (holds(*destination)) {
            return STG_E_ACCESSDENIED;
        }
        compound_file::CompoundFile& engine = element_->engine();
        const Exclusions excluded(engine, element_->entry(), {exclude, exclude_count}, names);
        std::vector<EntryId> elements = engine.children(element_->entry());
        std::erase_if(elements, [&](EntryId entry) {
            return excluded.contain(entry, engine.info(entry).type);
        });
        destination->AddRef();
        return TreeCopy(element_).copy_storage(element_->entry(), std::move(elements),
                                               ComPtr<IStorage>(destination));
    });
}

HRESULT StorageObject::MoveElementTo(const WCHAR* name, IStorage* destination,
                                     const WCHAR* new_name, DWORD flags) {
    if (destination == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    if (name == nullptr || new_name == nullptr) {
        return STG_E_INVALIDNAME;
    }
    if (flags != kMoveFlag && flags != kCopyFlag) {
        return STG_E_INVALIDFLAG;
    }
    const HRESULT refused = flags == kMoveFlag ? check_writable() : check_readable();
    if (FAILED(refused)) {
        return refused;
    }
    return guarded([&] {
        compound_file::CompoundFile& engine = element_->engine();
        const EntryId entry = engine.find(element_->entry(), name);
        if (entry == compound_file::kNoEntry) {
            return STG_E_FILENOTFOUND;
        }
        if (element_->file()->is_open(entry)) {
            return STG_E_ACCESSDENIED;
        }
        HRESULT result = S_OK;
        if (engine.info(entry).type == EntryType::stream) {
            result = TreeCopy(element_).copy_stream(entry, new_name, 0, *destination);
        } else {
            std::vector<EntryId> elements = engine.children(entry);
            ComPtr<IStorage> inner;
            result = destination->CreateStorage(new_name, kDestinationMode, 0, 0, inner.put());
            if (SUCCEEDED(result)) {
                result =
                    TreeCopy(element_).copy_storage(entry, std::move(elements), std::move(inner));
            }
        }
        return SUCCEEDED(result) && flags == kMoveFlag ? DestroyElement(name) : result;
    });
}

} // namespace platform

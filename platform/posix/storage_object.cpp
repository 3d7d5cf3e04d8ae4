// IStorage: opening and creating elements, attributes, enumeration. Copying is in storage_copy.cpp.
#include "platform/posix/storage_object.h"

#include "platform/adapters/error_codes.h"
#include "platform/adapters/statstg.h"
#include "platform/posix/enum_statstg.h"
#include "platform/posix/storage_modes.h"
#include "platform/posix/stream.h"

namespace platform {

using compound_file::EntryId;
using compound_file::EntryType;

IStorage* StorageObject::make_root(std::unique_ptr<compound_file::CompoundFile> engine,
                                   std::u16string path, DWORD mode) {
    auto file = std::make_shared<OpenCompoundFile>(std::move(engine), std::move(path));
    auto root = std::make_shared<OpenElement>(std::move(file), nullptr, compound_file::kRoot);
    return new StorageObject(std::move(root), mode & ~STGM_CREATE);
}

StorageObject::~StorageObject() {
    if (can_write(mode_) && !element_->is_reverted()) {
        guarded([&] {
            element_->engine().flush();
            return S_OK;
        });
    }
    element_->revert();
}

HRESULT StorageObject::QueryInterface(REFIID iid, void** object) {
    return answer(iid, object, {IID_IStorage, IID_StorageObject});
}

HRESULT StorageObject::check_alive() const {
    return element_->is_reverted() ? STG_E_REVERTED : S_OK;
}

HRESULT StorageObject::check_readable() const {
    const HRESULT alive = check_alive();
    return SUCCEEDED(alive) && !can_read(mode_) ? STG_E_ACCESSDENIED : alive;
}

HRESULT StorageObject::check_writable() const {
    const HRESULT alive = check_alive();
    return SUCCEEDED(alive) && !can_write(mode_) ? STG_E_ACCESSDENIED : alive;
}

HRESULT StorageObject::find_closed(const WCHAR* name, EntryType type, EntryId& found) const {
    const compound_file::CompoundFile& engine = element_->engine();
    found = engine.find(element_->entry(), name);
    if (found == compound_file::kNoEntry || engine.info(found).type != type) {
        return STG_E_FILENOTFOUND;
    }
    return element_->file()->is_open(found) ? STG_E_ACCESSDENIED : S_OK;
}

HRESULT StorageObject::clear_name(const WCHAR* name, DWORD mode) {
    const EntryId existing = element_->engine().find(element_->entry(), name);
    if (existing == compound_file::kNoEntry) {
        return S_OK;
    }
    if ((mode & STGM_CREATE) == 0) {
        return STG_E_FILEALREADYEXISTS;
    }
    erase(existing);
    return S_OK;
}

// Everything below goes with the entry, and so do the ids of what is open there; those objects are
// cut off by the revert of the element that they were opened through.
void StorageObject::erase(EntryId entry) {
    element_->engine().erase(entry);
    element_->file()->revert(entry);
}

std::shared_ptr<OpenElement> StorageObject::claim(EntryId entry) {
    auto element = std::make_shared<OpenElement>(element_->file(), element_, entry);
    element_->file()->claim(*element);
    return element;
}

HRESULT StorageObject::hand_out_stream(EntryId entry, DWORD mode, IStream** stream) {
    *stream = new StreamObject(claim(entry), element_->engine().stream(entry), mode & ~STGM_CREATE);
    return S_OK;
}

HRESULT StorageObject::hand_out_storage(EntryId entry, DWORD mode, IStorage** storage) {
    *storage = new StorageObject(claim(entry), mode & ~STGM_CREATE);
    return S_OK;
}

HRESULT StorageObject::CreateStream(const WCHAR* name, DWORD mode, DWORD reserved1, DWORD reserved2,
                                    IStream** stream) {
    if (stream == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    *stream = nullptr;
    if (name == nullptr) {
        return STG_E_INVALIDNAME;
    }
    if (reserved1 != 0 || reserved2 != 0) {
        return STG_E_INVALIDPARAMETER;
    }
    return guarded([&] {
        HRESULT result = check_writable();
        if (SUCCEEDED(result)) {
            result = check_stream_mode(mode, mode_, Creation::create);
        }
        if (SUCCEEDED(result)) {
            result = clear_name(name, mode);
        }
        if (FAILED(result)) {
            return result;
        }
        const EntryId entry = element_->engine().create_stream(element_->entry(), name);
        return hand_out_stream(entry, mode, stream);
    });
}

HRESULT StorageObject::OpenStream(const WCHAR* name, void* reserved1, DWORD mode, DWORD reserved2,
                                  IStream** stream) {
    if (stream == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    *stream = nullptr;
    if (name == nullptr) {
        return STG_E_INVALIDNAME;
    }
    if (reserved1 != nullptr || reserved2 != 0) {
        return STG_E_INVALIDPARAMETER;
    }
    return guarded([&] {
        EntryId entry = compound_file::kNoEntry;
        HRESULT result = check_alive();
        if (SUCCEEDED(result)) {
            result = check_stream_mode(mode, mode_, Creation::open);
        }
        if (SUCCEEDED(result)) {
            result = find_closed(name, EntryType::stream, entry);
        }
        return FAILED(result) ? result : hand_out_stream(entry, mode, stream);
    });
}

HRESULT StorageObject::CreateStorage(const WCHAR* name, DWORD mode, DWORD reserved1,
                                     DWORD reserved2, IStorage** storage) {
    if (storage == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    *storage = nullptr;
    if (name == nullptr) {
        return STG_E_INVALIDNAME;
    }
    if (reserved1 != 0 || reserved2 != 0) {
        return STG_E_INVALIDPARAMETER;
    }
    return guarded([&] {
        HRESULT result = check_writable();
        if (SUCCEEDED(result)) {
            result = check_storage_mode(mode, mode_, Creation::create);
        }
        if (SUCCEEDED(result)) {
            result = clear_name(name, mode);
        }
        if (FAILED(result)) {
            return result;
        }
        const EntryId entry = element_->engine().create_storage(element_->entry(), name);
        return hand_out_storage(entry, mode, storage);
    });
}

HRESULT StorageObject::OpenStorage(const WCHAR* name, IStorage* priority, DWORD mode,
                                   WCHAR** exclude, DWORD reserved, IStorage** storage) {
    if (storage == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    *storage = nullptr;
    if (name == nullptr) {
        return STG_E_INVALIDNAME;
    }
    if (priority != nullptr || exclude != nullptr || reserved != 0) {
        return STG_E_INVALIDPARAMETER;
    }
    return guarded([&] {
        EntryId entry = compound_file::kNoEntry;
        HRESULT result = check_alive();
        if (SUCCEEDED(result)) {
            result = check_storage_mode(mode, mode_, Creation::open);
        }
        if (SUCCEEDED(result)) {
            result = find_closed(name, EntryType::storage, entry);
        }
        return FAILED(result) ? result : hand_out_storage(entry, mode, storage);
    });
}

HRESULT StorageObject::Commit(DWORD) {
    if (const HRESULT refused = check_alive(); FAILED(refused)) {
        return refused;
    }
    return guarded([&] {
        element_->engine().flush();
        return S_OK;
    });
}

HRESULT StorageObject::Revert() {
    return check_alive();
}

HRESULT StorageObject::EnumElements(DWORD reserved1, void* reserved2, DWORD reserved3,
                                    IEnumSTATSTG** elements) {
    if (elements == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    *elements = nullptr;
    if (reserved1 != 0 || reserved2 != nullptr || reserved3 != 0) {
        return STG_E_INVALIDPARAMETER;
    }
    if (const HRESULT refused = check_readable(); FAILED(refused)) {
        return refused;
    }
    return guarded([&] {
        std::vector<compound_file::EntryInfo> snapshot;
        for (const EntryId child : element_->engine().children(element_->entry())) {
            snapshot.push_back(element_->engine().info(child));
        }
        *elements = make_enum_statstg(std::move(snapshot));
        return S_OK;
    });
}

HRESULT StorageObject::DestroyElement(const WCHAR* name) {
    if (name == nullptr) {
        return STG_E_INVALIDNAME;
    }
    if (const HRESULT refused = check_writable(); FAILED(refused)) {
        return refused;
    }
    return guarded([&] {
        const EntryId entry = element_->engine().find(element_->entry(), name);
        if (entry == compound_file::kNoEntry) {
            return STG_E_FILENOTFOUND;
        }
        erase(entry);
        return S_OK;
    });
}

HRESULT StorageObject::RenameElement(const WCHAR* old_name, const WCHAR* new_name) {
    if (old_name == nullptr || new_name == nullptr) {
        return STG_E_INVALIDNAME;
    }
    if (const HRESULT refused = check_writable(); FAILED(refused)) {
        return refused;
    }
    return guarded([&] {
        const EntryId entry = element_->engine().find(element_->entry(), old_name);
        if (entry == compound_file::kNoEntry) {
            return STG_E_FILENOTFOUND;
        }
        if (element_->file()->is_open(entry)) {
            return STG_E_ACCESSDENIED;
        }
        element_->engine().rename(entry, new_name);
        return S_OK;
    });
}

HRESULT StorageObject::SetElementTimes(const WCHAR* name, const FILETIME* created, const FILETIME*,
                                       const FILETIME* modified) {
    if (const HRESULT refused = check_writable(); FAILED(refused)) {
        return refused;
    }
    return guarded([&] {
        compound_file::CompoundFile& engine = element_->engine();
        const EntryId entry =
            name == nullptr ? element_->entry() : engine.find(element_->entry(), name);
        if (entry == compound_file::kNoEntry) {
            return STG_E_FILENOTFOUND;
        }
        const compound_file::EntryInfo info = engine.info(entry);
        if (info.type != EntryType::stream) {
            engine.set_times(entry, created == nullptr ? info.created : stored_time(*created),
                             modified == nullptr ? info.modified : stored_time(*modified));
        }
        return S_OK;
    });
}

HRESULT StorageObject::SetClass(REFCLSID clsid) {
    if (const HRESULT refused = check_writable(); FAILED(refused)) {
        return refused;
    }
    return guarded([&] {
        element_->engine().set_class_id(element_->entry(), stored_class_id(clsid));
        return S_OK;
    });
}

HRESULT StorageObject::SetStateBits(DWORD bits, DWORD mask) {
    if (const HRESULT refused = check_writable(); FAILED(refused)) {
        return refused;
    }
    return guarded([&] {
        element_->engine().set_state_bits(element_->entry(), bits, mask);
        return S_OK;
    });
}

HRESULT StorageObject::Stat(STATSTG* stat, DWORD flags) {
    if (stat == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    if (const HRESULT refused = check_stat_flags(flags); FAILED(refused)) {
        return refused;
    }
    if (const HRESULT refused = check_alive(); FAILED(refused)) {
        return refused;
    }
    return guarded([&] {
        const bool is_root = element_->entry() == compound_file::kRoot;
        const compound_file::EntryInfo info = element_->engine().info(element_->entry());
        *stat = describe(info, is_root ? element_->file()->path() : info.name, mode_, flags);
        return S_OK;
    });
}

} // namespace platform

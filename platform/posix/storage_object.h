// IStorage over one storage of a compound file. Direct mode only: a change of a stream's bytes is
// on the file at once, changes of names, sizes and attributes at the next flush (any commit, the
// release of a stream opened for writing, the last release of the root).
#pragma once

#include "platform/adapters/com_object.h"
#include "platform/posix/open_compound_file.h"

#include <memory>

namespace platform {

// Answered by StorageObjects only, with their IStorage.
inline constexpr IID IID_StorageObject{
    0x8B6F2D17, 0x03AC, 0x4E58, {0xA1, 0x39, 0xC4, 0x5E, 0x90, 0x7B, 0x62, 0xDD}};

class StorageObject final : public ComObject<IStorage> {
  public:
    StorageObject(std::shared_ptr<OpenElement> element, DWORD mode)
        : element_(std::move(element))
        , mode_(mode) {}

    // The root storage of an engine that was just opened. `path` as in OpenCompoundFile. Throws
    // std::bad_alloc.
    static IStorage* make_root(std::unique_ptr<compound_file::CompoundFile> engine,
                               std::u16string path, DWORD mode);

    HRESULT QueryInterface(REFIID iid, void** object) override;
    HRESULT CreateStream(const WCHAR* name, DWORD mode, DWORD reserved1, DWORD reserved2,
                         IStream** stream) override;
    HRESULT OpenStream(const WCHAR* name, void* reserved1, DWORD mode, DWORD reserved2,
                       IStream** stream) override;
    HRESULT CreateStorage(const WCHAR* name, DWORD mode, DWORD reserved1, DWORD reserved2,
                          IStorage** storage) override;
    HRESULT OpenStorage(const WCHAR* name, IStorage* priority, DWORD mode, WCHAR** exclude,
                        DWORD reserved, IStorage** storage) override;

    // Elements that are open are copied too. Excluded are kinds of elements (IID_IStream,
    // IID_IStorage) and names, both of this storage's own elements only. Into itself or a storage
    // below it: STG_E_ACCESSDENIED.
    HRESULT CopyTo(DWORD exclude_count, const IID* exclude, WCHAR** names,
                   IStorage* destination) override;
    HRESULT MoveElementTo(const WCHAR* name, IStorage* destination, const WCHAR* new_name,
                          DWORD flags) override;
    HRESULT Commit(DWORD flags) override;
    HRESULT Revert() override;
    HRESULT EnumElements(DWORD reserved1, void* reserved2, DWORD reserved3,
                         IEnumSTATSTG** elements) override;

    // Open objects of the element, and of what is in it, are reverted.
    HRESULT DestroyElement(const WCHAR* name) override;

    // STG_E_ACCESSDENIED while the element is open.
    HRESULT RenameElement(const WCHAR* old_name, const WCHAR* new_name) override;

    // A null name stands for this storage. Access times do not exist in the format, and streams
    // have no times: both are accepted and left alone.
    HRESULT SetElementTimes(const WCHAR* name, const FILETIME* created, const FILETIME* accessed,
                            const FILETIME* modified) override;
    HRESULT SetClass(REFCLSID clsid) override;
    HRESULT SetStateBits(DWORD bits, DWORD mask) override;

    // The root's name is the full path of the file.
    HRESULT Stat(STATSTG* stat, DWORD flags) override;

  private:
    ~StorageObject() override;

    HRESULT check_alive() const;
    HRESULT check_readable() const;
    HRESULT check_writable() const;
    bool holds(IStorage& other) const;

    // The named element if it is of the type and nobody has it open.
    HRESULT find_closed(const WCHAR* name, compound_file::EntryType type,
                        compound_file::EntryId& found) const;

    // Makes room for a new element: STG_E_FILEALREADYEXISTS for one that is there, unless the mode
    // says STGM_CREATE; then it is erased.
    HRESULT clear_name(const WCHAR* name, DWORD mode);
    void erase(compound_file::EntryId entry);
    std::shared_ptr<OpenElement> claim(compound_file::EntryId entry);
    HRESULT hand_out_stream(compound_file::EntryId entry, DWORD mode, IStream** stream);
    HRESULT hand_out_storage(compound_file::EntryId entry, DWORD mode, IStorage** storage);

    std::shared_ptr<OpenElement> element_;
    DWORD mode_;
};

} // namespace platform

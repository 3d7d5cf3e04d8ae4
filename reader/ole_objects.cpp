#include "reader/ole_objects.h"

#include "common_new/SafeFunc/paths.h"
#include "plugin/document_path.h"
#include "plugin/failure.h"
#include "plugin/state.h"
#include "plugin/status.h"
#include "reader/object_storage.h"
#include "reader/ole_link_path.h"
#include "reader/presentation.h"

#include <utility>

namespace ppt {

namespace {

// Offsets in an ExOleObjAtom.
constexpr std::size_t kTypeOffset = 4;
constexpr std::size_t kIdOffset = 8;
constexpr std::size_t kPersistIdOffset = 16;

constexpr std::uint32_t kLinkedObject = 1;

// As the host sees it: absolute, unless the source has no name at all.
std::string link_path(const PptRecord& storage_record) {
    const MemoryBlock block = object_storage(storage_record);
    const ComPtr<IStorage> storage = open_object_storage(block, true);
    std::string path;
    const bool is_relative = n_getOleLinkPath(storage.get(), &path) == 1;
    if (is_relative) {
        std::string absolute;
        v_resolveLinkPath(path.c_str(), document_path().c_str(), &absolute);
        return absolute;
    }
    return path;
}

} // namespace

void OleObjects::v_addOleLinkObject(const PptRecord& atom, std::int32_t ordinal,
                                    std::vector<LinkRecord>& found) {
    if (atom.u32_at(kTypeOffset) != kLinkedObject) {
        return;
    }
    PptPresentation& presentation = *atom.owner;
    const std::uint32_t list_position = presentation.n_tellDocument();
    LinkRecord record;
    record.holder_persist_id = atom.u32_at(kPersistIdOffset);
    PersistDirectory& directory = presentation.persist_directory();
    directory.v_noteObjectAtStart(record.holder_persist_id);
    record.file_name = path_at(directory.n_objectOffset(record.holder_persist_id), presentation);
    record.record_type = RT_ExternalOleLink;
    record.stream_position = list_position;
    record.external_object_id = atom.u32_at(kIdOffset);
    record.object_list_ordinal = ordinal;
    found.push_back(std::move(record));
    presentation.v_seekDocument(list_position);
}

const LinkPath& OleObjects::path_at(std::uint32_t offset, PptPresentation& presentation) {
    const auto [known, is_new] = sources_.try_emplace(offset);
    Source& source = known->second;
    if (is_new) {
        source.status = status_or(status::kDamaged, [&] {
            source.path = read_path(offset, presentation);
            return status::kSuccess;
        });
        if (source.status != status::kSuccess) {
            presentation.unread_storages.insert(offset);
        }
    }
    require_success(source.status);
    return source.path;
}

std::string OleObjects::read_path(std::uint32_t offset, PptPresentation& presentation) {
    const auto storages_overlap = [&] { return bytes_read_ > presentation.readable_size(); };
    if (storages_overlap()) {
        throw static_cast<int>(status::kDamaged);
    }
    presentation.v_seekDocument(offset);
    PptRecord storage_record(&presentation);
    storage_record.v_readRecord(RT_ExternalOleObjectStg);
    bytes_read_ += storage_record.body.size();
    if (storages_overlap()) {
        throw static_cast<int>(status::kDamaged);
    }
    try {
        return link_path(storage_record);
    } catch (int failure) {
        // The storage is in memory: its end was read, not a failing device.
        const bool is_cut = state().keeps_going() && failure == status::kReadFault;
        throw is_cut ? static_cast<int>(status::kDamaged) : failure;
    }
}

} // namespace ppt

#include "rewriter/rewrite_driver.h"

#include "common_new/common/storage.h"
#include "plugin/document_path.h"
#include "plugin/error_params.h"
#include "plugin/link_table.h"
#include "plugin/state.h"
#include "plugin/status.h"
#include "rewriter/document_rewriter.h"
#include "rewriter/ole_rewriter.h"
#include "rewriter/page_links.h"
#include "rewriter/persist_writer.h"
#include "rewriter/slide_rewriter.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace ppt {

namespace {

constexpr std::uint64_t kLargestStream = 0x7FFFFFFF;

// The size change of one object; 0 for an object that is not rewritten and keeps its bytes.
std::int32_t n_rewritePersistObject(RewriteCopy& copy, std::uint32_t id, std::uint32_t old_offset,
                                    std::int32_t flags) {
    const bool is_document = id == copy.loaded.current_user_edit().document_persist_id;
    if (is_document) {
        const bool changed = (flags & kFlagLinks) != 0 && ps_nextLinkOfHolder(id, true, nullptr);
        return changed ? n_rewriteDocument(copy, old_offset) : 0;
    }
    // Ids in the object's own records have to go even when it holds no changed link.
    const bool drops_ids = state().ids_in_document;
    const LinkRecord* link = ps_nextLinkOfHolder(id, !drops_ids, nullptr);
    if (link != nullptr && link->record_type == RT_ExternalOleLink) {
        // Of several uses of one object only a later one may have changed.
        link = ps_nextLinkOfHolder(id, true, nullptr);
        const bool changed = (flags & kFlagLinks) != 0 && link != nullptr;
        return changed ? n_rewriteOleObject(copy, old_offset, link) : 0;
    }
    if (link != nullptr && !link->path_changed()) {
        link = ps_nextLinkOfHolder(id, true, link);
    }
    const bool left_out = copy.loaded.unread_pages.contains(old_offset);
    const bool changes = !left_out && (link != nullptr || drops_ids);
    return changes ? n_rewriteSlideObject(copy, old_offset, link, flags) : 0;
}

bool is_damage(int status) {
    return status == status::kDamaged || status == status::kBadDecompression ||
           status == status::kStorageOnMemoryFailed || status == status::kElementMissing;
}

// The links of an object that keeps its bytes are reported as not written.
void note_not_written(RewriteCopy& copy, std::uint32_t holder) {
    const LinkRecord* link = nullptr;
    while ((link = ps_nextLinkOfHolder(holder, true, link)) != nullptr) {
        copy.written_links[link->table_index] = false;
    }
}

// The size change; none, with the letter "k", for an object that turns out to be damaged. Without
// the document container there is no presentation.
std::optional<std::int32_t> rewrite_unless_damaged(RewriteCopy& copy, std::uint32_t id,
                                                   std::uint32_t old_offset, std::int32_t flags) {
    try {
        return n_rewritePersistObject(copy, id, old_offset, flags);
    } catch (int failure) {
        const bool is_document = id == copy.loaded.current_user_edit().document_persist_id;
        if (is_document || !state().keeps_going() || !is_damage(failure)) {
            throw;
        }
    }
    return std::nullopt;
}

// An object that cannot be rewritten keeps its bytes.
std::int32_t rewrite_or_keep(RewriteCopy& copy, std::uint32_t id, std::uint32_t old_offset,
                             std::int32_t flags) {
    const std::uint32_t start = copy.writer.tell();
    const std::optional<std::int32_t> change = rewrite_unless_damaged(copy, id, old_offset, flags);
    if (!change) {
        if (copy.writer.tell() != start) {
            copy.v_returnTo(old_offset, start);
        }
        note_not_written(copy, id);
    }
    return change.value_or(0);
}

// Brings what stands between the last rewritten object and the next one behind what was written.
// Returns the status code of the copying.
std::int32_t move_up_to(RewriteCopy& copy, std::uint32_t old_offset) {
    const bool inside_rewritten_object = old_offset < copy.loaded_position;
    if (inside_rewritten_object) {
        throw static_cast<int>(status::kDamaged);
    }
    copy.loaded.v_seekDocument(copy.loaded_position);
    const std::int32_t status = copy.writer.copy(copy.loaded, old_offset - copy.loaded_position);
    if (status != status::kSuccess) {
        return status;
    }
    copy.v_notePositions();
    if (copy.first_moved_offset == 0) {
        copy.first_moved_offset = copy.copy_position;
    }
    return status::kSuccess;
}

// Of the ids that share an object, the one that its links know as their holder.
std::uint32_t holder_among(const std::vector<std::uint32_t>& ids, std::uint32_t document) {
    if (std::find(ids.begin(), ids.end(), document) != ids.end()) {
        return document;
    }
    const auto holder = std::find_if(ids.begin(), ids.end(), [](std::uint32_t id) {
        return ps_nextLinkOfHolder(id, false, nullptr) != nullptr;
    });
    return holder == ids.end() ? ids.front() : *holder;
}

// An entry of the persist directory that leads nowhere, or that the load could not read anything by
// and leads into a rewritten object, stays as it is with the letter "k".
bool leads_nowhere(const RewriteCopy& copy, std::uint32_t offset) {
    const PptPresentation& loaded = copy.loaded;
    const bool is_unread_part =
        offset < copy.loaded_position &&
        (loaded.unread_pages.contains(offset) || loaded.unread_storages.contains(offset));
    return state().keeps_going() && (is_unread_part || offset >= copy.loaded.document_size());
}

std::int32_t rewrite_objects(RewriteCopy& copy, std::int32_t flags) {
    const PersistDirectory& objects = copy.loaded.persist_directory();
    PersistDirectory& moved_objects = copy.copy.persist_directory();
    const std::uint32_t document = copy.loaded.current_user_edit().document_persist_id;
    std::uint32_t offset = kNoOffset;
    for (;;) {
        if (objects.n_nextObjectByOffset(offset) < 0) {
            return status::kSuccess;
        }
        if (leads_nowhere(copy, offset)) {
            continue;
        }
        const bool lies_inside_another = copy.extents.reach_over(offset);
        copy.extents.add(copy.loaded, offset);
        const std::vector<std::uint32_t> ids = objects.ids_at(offset);
        if (copy.has_written()) {
            const std::int32_t status = move_up_to(copy, offset);
            if (status != status::kSuccess) {
                return status;
            }
            // Ids that share an object move together, though it is visited only once.
            for (const std::uint32_t id : ids) {
                moved_objects.v_setObjectOffset(id, copy.copy_position);
            }
        } else {
            copy.writer.seek(offset);
        }
        const std::int32_t change =
            rewrite_or_keep(copy, holder_among(ids, document), offset, flags);
        if (change != 0) {
            if (lies_inside_another || copy.extents.have_list_in(offset, copy.loaded_position)) {
                throw static_cast<int>(status::kDamaged);
            }
            copy.shifts.add(offset, change);
        }
    }
}

// Everything behind the last object that was visited.
std::int32_t move_rest(RewriteCopy& copy) {
    if (copy.has_written()) {
        copy.loaded.v_seekDocument(copy.loaded_position);
        const std::uint64_t rest = copy.loaded.document_size() - copy.loaded_position;
        const std::int32_t status = copy.writer.copy(copy.loaded, static_cast<std::uint32_t>(rest));
        if (status != status::kSuccess) {
            return status;
        }
        copy.v_notePositions();
    }
    copy.writer.flush();
    return status::kSuccess;
}

std::int32_t set_document_size(PptPresentation& copy, std::uint32_t size) {
    ULARGE_INTEGER wide_size{};
    wide_size.QuadPart = size;
    return j_translateComError(copy.ps_getDocumentStream()->SetSize(wide_size));
}

std::int32_t write_current_user(PptPresentation& copy) {
    ComPtr<IStream> stream;
    std::int32_t status = j_openStream(copy.root(), WIDE("Current User"), false, stream.put());
    RecordHeaderBytes header{};
    if (status == status::kSuccess) {
        status =
            j_readStream(stream.get(), header.data(), static_cast<std::int32_t>(header.size()));
    }
    if (status == status::kSuccess) {
        const CurrentUserBytes fixed = encode_current_user(copy.current_user());
        status = j_writeStream(document_path().c_str(), stream.get(), fixed.data(),
                               static_cast<std::int32_t>(fixed.size()));
    }
    return status;
}

// The stream is copied and cut by its size, which offsets have to reach.
void require_whole_stream(PptPresentation& loaded) {
    const std::uint64_t size = loaded.document_size();
    if (size != loaded.readable_size() || size > kLargestStream) {
        v_setErrorParamText(document_path());
        throw static_cast<int>(status::kDamaged);
    }
}

} // namespace

std::int32_t j_rewriteLinks(PptPresentation& copy_presentation, std::int32_t flags) {
    require_whole_stream(*state().presentation);
    RewriteCopy copy(*state().presentation, copy_presentation);
    std::int32_t status = rewrite_objects(copy, flags);
    if (status != status::kSuccess) {
        return status;
    }
    state().links_not_written =
        (flags & kFlagLinks) != 0 ? links_not_written(copy) : std::vector<std::uint32_t>();
    status = move_rest(copy);
    if (status != status::kSuccess) {
        return status;
    }
    status = set_document_size(copy_presentation, n_writePersistDirectory(copy));
    if (status != status::kSuccess) {
        return status;
    }
    copy_presentation.v_releaseDocumentStream();
    return write_current_user(copy_presentation);
}

} // namespace ppt

// j_rewriteFile: copies the loaded presentation, rewrites the changed links in the copy and stores
// the link ids in its document properties.
#include "common_new/common/conversion.h"
#include "common_new/common/files.h"
#include "common_new/common/storage.h"
#include "linkid/link_properties.h"
#include "plugin/document_path.h"
#include "plugin/error_params.h"
#include "plugin/failure.h"
#include "plugin/sequences.h"
#include "plugin/state.h"
#include "plugin/status.h"
#include "plugin/trace_log.h"
#include "reader/presentation.h"
#include "reader/record_types.h"
#include "rewriter/rewrite_driver.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <deque>

namespace ppt {

namespace {

constexpr std::int32_t kPathLimit = 1024;

void cut_trailing_blanks(char* path) {
    for (std::size_t length = std::strlen(path); length > 0 && path[length - 1] == ' '; --length) {
        path[length - 1] = '\0';
    }
}

bool any_id_was_set() {
    const std::deque<LinkRecord>& links = state().links.links();
    return state().target_file_id_set ||
           std::any_of(links.begin(), links.end(), [](const LinkRecord& link) {
               return (link.change_status & kLinkIdChanged) != 0;
           });
}

// Document properties that could not be read are copied as they are; ids that were to go into them
// fail the rewrite.
std::int32_t write_properties(IStorage* root, std::int32_t flags) {
    if (!state().properties_unread) {
        return j_writeLinkIdsToProperties(root, flags);
    }
    if (any_id_was_set()) {
        v_setErrorParamText(document_path());
        return status::kPropertiesFailed;
    }
    return status::kSuccess;
}

// Pictures and objects that were not written keep their paths, and by these their ids.
void take_back_unwritten_paths() {
    for (const std::uint32_t index : state().links_not_written) {
        LinkRecord& link = state().links.links()[index];
        if (link.record_type != RT_ExternalHyperlink) {
            link.file_name = link.initial_file_name;
        }
    }
}

std::int32_t rewrite_copy(ComPtr<IStorage> root, std::int32_t flags) {
    PptPresentation copy(std::move(root));
    ComPtr<IStream> stream;
    std::int32_t status =
        j_openStream(copy.root(), WIDE("PowerPoint Document"), false, stream.put());
    if (status != status::kSuccess) {
        return status;
    }
    copy.v_setDocumentStream(std::move(stream));
    copy.v_readPersistDirectory();
    copy.v_buildObjectArray();
    // Another process may have put another file at the loaded one's path, or at the copy's after it
    // was made. Nothing of it is mixed with what is loaded.
    if (!copy.b_isLaidOutAs(*state().presentation)) {
        v_setErrorParamText(document_path());
        return status::kInUseByOther;
    }
    if (copy.persist_directory().b_goesOnAtIdZero()) {
        v_setErrorParamText(document_path());
        return status::kDamaged;
    }
    status = j_rewriteLinks(copy, flags);
    copy.v_releaseDocumentStream();
    v_logLine("Link paths have been rewritten");
    if (status != status::kSuccess) {
        return status;
    }
    take_back_unwritten_paths();
    status = write_properties(copy.root(), flags);
    v_logLine("LinkIds have been reset");
    if (status != status::kSuccess) {
        return status;
    }
    // The release of a storage cannot report that its last writes failed; a commit can.
    return j_translateComError(copy.root()->Commit(STGC_DEFAULT));
}

} // namespace

std::int32_t rewrite_file(char* path, std::int32_t flags) {
    if (path == nullptr) {
        return status::kNullArgument;
    }
    cut_trailing_blanks(path);
    if (!b_checkLength(path, kPathLimit)) {
        return status::kTextTooLong;
    }
    const bool loaded = state().presentation != nullptr;
    if (!loaded) {
        return status::kNullArgument;
    }
    std::int32_t status = j_copyFile(document_path().c_str(), path, false);
    if (status != status::kSuccess) {
        return status;
    }
    v_logLine("Rewriting file ", document_path());
    std::array<WCHAR, kPathLimit> wide_path{};
    status = j_ansiToWide(path, wide_path.data(), kPathLimit);
    ComPtr<IStorage> root;
    if (status == status::kSuccess) {
        status = j_openStorageFile(wide_path.data(), false, root.put());
    }
    if (status != status::kSuccess) {
        return status;
    }
    status = status_of(
        [&] {
            require_success(rewrite_copy(std::move(root), flags));
            return status::kSuccess;
        },
        [path] {
            v_setErrorParamText(path);
            return status::kWriteFault;
        });
    v_unload();
    // Hosts have nothing else to ask. It may be a long text, so the links are gone by now.
    if (status == status::kSuccess && state().has_option('w')) {
        v_setErrorParamCountAndIndexes(state().links_not_written);
    }
    v_logLine("File has been rewritten, j_status=", std::to_string(status));
    return status;
}

} // namespace ppt

// j_loadFile: opens a presentation and runs the reading steps in their fixed order, with a log line
// behind each of them.
#include "common_new/common/conversion.h"
#include "common_new/common/storage.h"
#include "linkid/link_properties.h"
#include "plugin/document_path.h"
#include "plugin/error_params.h"
#include "plugin/failure.h"
#include "plugin/sequences.h"
#include "plugin/state.h"
#include "plugin/status.h"
#include "plugin/trace_log.h"
#include "reader/link_walk.h"
#include "reader/presentation.h"

#include <array>

namespace ppt {

namespace {

constexpr std::int32_t kPathLimit = 1024;

void check_version(IStorage* root) {
    if (!b_checkLimit(j_getPowerPointVersion(root), state().version_ceiling)) {
        throw static_cast<int>(status::kVersionAboveCeiling);
    }
}

// Document properties that cannot be read count as left out: the ids that the document's own
// records hold stay there.
std::int32_t read_properties(const PptPresentation& presentation, std::int32_t flags) {
    PluginState& plugin = state();
    const std::int32_t status = j_readLinkIdsFromProperties(presentation.root(), flags);
    if (status == status::kSuccess || !plugin.keeps_going() || !b_liesInObject(status)) {
        return status;
    }
    plugin.unread.add({status, UnreadKind::properties, 0});
    plugin.properties_unread = true;
    plugin.ids_in_document = false;
    return status::kSuccess;
}

std::int32_t read_presentation(ComPtr<IStorage> root, std::int32_t flags) {
    check_version(root.get());
    PluginState& plugin = state();
    plugin.presentation = std::make_shared<PptPresentation>(std::move(root));
    PptPresentation& presentation = *plugin.presentation;
    if (!presentation.b_hasCurrentUser()) {
        throw static_cast<int>(status::kNotAPresentation);
    }
    presentation.v_readPersistDirectory();
    v_logLine("Persist directory has been read");
    presentation.v_buildObjectArray();
    v_logLine("Object array has been created");
    if (presentation.has_user_edit()) {
        plugin.links.set_document_persist_id(presentation.current_user_edit().document_persist_id);
        plugin.links.set_stream_size(presentation.readable_size());
    }
    std::int32_t status = j_findLinks(presentation, flags);
    v_logLine("Link paths have been obtained");
    presentation.v_releaseDocumentStream();
    if (status == status::kSuccess) {
        status = read_properties(presentation, flags);
    }
    v_logLine("LinkIds have been retrieved");
    if (status == status::kSuccess && plugin.keeps_going()) {
        v_setErrorParamUnread(plugin.unread);
    }
    return status;
}

} // namespace

std::int32_t load_file(const char* path, std::int32_t flags) {
    if (path == nullptr) {
        return status::kNullArgument;
    }
    if (!b_checkLength(path, kPathLimit)) {
        return status::kTextTooLong;
    }
    set_document_path(path);
    std::array<WCHAR, kPathLimit> wide_path{};
    std::int32_t status = j_ansiToWide(path, wide_path.data(), kPathLimit);
    ComPtr<IStorage> root;
    if (status == status::kSuccess) {
        status = j_openStorageFile(wide_path.data(), true, root.put());
    }
    if (status != status::kSuccess) {
        return status;
    }
    if (state().presentation) {
        // A host that forgot to unload must not find the old links among the new.
        v_unload();
        set_document_path(path);
    }
    v_logLine("Loading file ", path);
    status = status_of([&] { return read_presentation(std::move(root), flags); },
                       [path] {
                           v_setErrorParamText(path);
                           return status::kLoadFailed;
                       });
    if (status != status::kSuccess) {
        v_unload();
    }
    v_logLine("File has been loaded, j_status=", std::to_string(status));
    return status;
}

} // namespace ppt

// The process-wide state of the plug-in. It exists once, has no lock and is emptied by `v_unload`,
// except for what start-up set (options, version ceiling), the error parameters and the links that
// the last rewrite could not write.
#pragma once

#include "hostapi/hostapi.h"
#include "plugin/link_table.h"
#include "plugin/unread_objects.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace ppt {

class PptPresentation;

// Flags of loading and rewriting.
inline constexpr std::int32_t kFlagLinks = 1;
inline constexpr std::int32_t kFlagTargetFileId = 2;

struct PluginState {
    PluginState() { v_id64Set(&target_file_id, 1); }

    std::string options; // letters, at most 259
    std::int32_t version_ceiling = 0;
    // The loaded presentation, which owns its compound file; shared only to keep its type out of
    // this floor.
    std::shared_ptr<PptPresentation> presentation;
    LinkTable links;
    id64 target_file_id{};
    // Link ids or the target file id were found in the document's own records.
    bool ids_in_document = false;
    // What the load left out. With the document properties among it, `properties_unread` is set:
    // the rewrite keeps them as they are.
    UnreadObjects unread;
    bool properties_unread = false;
    bool target_file_id_set = false; // by the host, since the presentation was loaded
    // Table indexes of the changed links that the last rewrite could not write where they stand, on
    // their pages or in OLE storages. Kept when the presentation is unloaded, which the rewrite
    // itself does.
    std::vector<std::uint32_t> links_not_written;

    bool has_option(char letter) const { return options.find(letter) != std::string::npos; }
    // Whether what cannot be read is left out instead of ending the load.
    bool keeps_going() const { return has_option('k'); }
};

// Throws std::bad_alloc when the first call of the process finds no memory for it.
PluginState& state();

// Forgets the loaded presentation with all that was learnt of it. The state was asked for before.
void v_unload() noexcept;

} // namespace ppt

#include "plugin/state.h"

#include "plugin/document_path.h"

namespace ppt {

PluginState& state() {
    static PluginState instance;
    return instance;
}

void v_unload() noexcept {
    PluginState& plugin = state();
    set_document_path("");
    v_id64Set(&plugin.target_file_id, 1);
    plugin.presentation.reset();
    plugin.links.clear();
    plugin.ids_in_document = false;
    plugin.unread = {};
    plugin.properties_unread = false;
    plugin.target_file_id_set = false;
}

} // namespace ppt

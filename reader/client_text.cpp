#include "reader/client_text.h"

#include "common_new/common/conversion.h"
#include "plugin/state.h"
#include "reader/utf16.h"

#include <algorithm>
#include <utility>

namespace ppt {

namespace {

bool options_ask_for_text() {
    const PluginState& plugin = state();
    return plugin.has_option('h') || plugin.has_option('e') || plugin.has_option('t');
}

} // namespace

std::basic_string<WCHAR> units_of_text_atom(const PptRecord& atom) {
    if (atom.is(RT_TextBytesAtom)) {
        return {atom.body.begin(), atom.body.end()};
    }
    return utf16_units(atom.body);
}

bool b_holdsAnsiBytes(const PptRecord& atom) {
    return atom.is(RT_TextBytesAtom) && !b_codePageIsMultiByte();
}

void ClientText::set_type(std::uint32_t type) {
    if (options_ask_for_text()) {
        type_ = type;
    }
}

void ClientText::keep(PptRecord& atom) {
    position_ = atom.position;
    if (!is_kept_type()) {
        return;
    }
    state().links.count_text(atom.body.size()); // pages that overlap would keep it again
    const bool one_byte_each = atom.is(RT_TextBytesAtom);
    text_ = Shared(StoredText(std::move(atom.body), one_byte_each, b_holdsAnsiBytes(atom)));
}

void ClientText::complete(LinkRecord* link) const {
    if (link == nullptr || !is_kept_type() || text_.get() == nullptr) {
        return;
    }
    link->stream_position = position_;
    link->holder_persist_id = page_persist_id_;
    const PluginState& plugin = state();
    if (plugin.has_option('e') || plugin.has_option('t')) {
        show_text(*link);
    }
}

void ClientText::show_text(LinkRecord& link) const {
    const std::int32_t start = std::clamp(link.text_range_start, 0, length());
    const std::int32_t end = std::clamp(link.text_range_end, start, length());
    link.text_range_end = text_.get()->shown_end(start, end);
    link.box_text = text_;
}

} // namespace ppt

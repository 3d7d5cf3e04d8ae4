#include "reader/client_text.h"

#include "common_new/common/conversion.h"
#include "plugin/state.h"
#include "reader/utf16.h"

#include <algorithm>

namespace ppt {

namespace {

constexpr std::size_t kLongestText = kLinkTextLimit - 1;

bool options_ask_for_text() {
    const PluginState& plugin = state();
    return plugin.has_option('h') || plugin.has_option('e') || plugin.has_option('t');
}

bool is_low_surrogate(WCHAR unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
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

void ClientText::keep(const PptRecord& atom) {
    position_ = atom.position;
    if (!is_kept_type()) {
        return;
    }
    kept_ = true;
    raw_ = b_holdsAnsiBytes(atom);
    units_ = units_of_text_atom(atom);
}

void ClientText::complete(LinkRecord* link) const {
    if (link == nullptr || !is_kept_type() || !kept_) {
        return;
    }
    link->stream_position = position_;
    link->holder_persist_id = page_persist_id_;
    const PluginState& plugin = state();
    if (plugin.has_option('e') || plugin.has_option('t')) {
        link->hyperlink_text = displayed_text(*link);
    }
}

std::string ClientText::displayed_text(LinkRecord& link) const {
    const std::size_t start =
        static_cast<std::size_t>(std::clamp<std::int32_t>(link.text_range_start, 0, length()));
    std::size_t end = static_cast<std::size_t>(
        std::clamp<std::int32_t>(link.text_range_end, static_cast<std::int32_t>(start), length()));
    // A unit gives at least one byte, so longer ranges cannot fit.
    end = std::min(end, start + kLongestText);
    std::string text = ansi(start, end);
    while (text.size() > kLongestText) {
        end -= std::max<std::size_t>(1, (text.size() - kLongestText) / 3);
        text = ansi(start, end);
    }
    if (end > start && end < units_.size() && is_low_surrogate(units_[end])) {
        --end;
        text = ansi(start, end);
    }
    link.text_range_end = static_cast<std::int32_t>(end);
    return text;
}

std::string ClientText::ansi(std::size_t start, std::size_t end) const {
    if (!raw_) {
        return ansi_from_wide(std::basic_string_view<WCHAR>(units_).substr(start, end - start));
    }
    std::string text(end - start, '\0');
    std::transform(units_.begin() + static_cast<std::ptrdiff_t>(start),
                   units_.begin() + static_cast<std::ptrdiff_t>(end), text.begin(),
                   [](WCHAR unit) { return static_cast<char>(unit); });
    return text;
}

} // namespace ppt

#include "linkid/legacy_tags.h"

#include <algorithm>
#include <string_view>

namespace ppt {

namespace {

constexpr std::string_view kLegacyTagName = "OBRIN-LINK-NUM=";
constexpr std::size_t kTextSize = 100; // of a name or value, with the terminator
constexpr std::size_t kLongestId = 19;

} // namespace

std::optional<std::string> legacy_tag_value(PptRecord& string_tag) {
    bool is_legacy = false;
    std::string value;
    for (int i = 0; i < 2; ++i) {
        const PptRecord& child = required_child(string_tag, RT_CString);
        const std::string text = child.n_getAnsiString(kTextSize);
        const bool is_name = child.header.instance() == 0;
        if (is_name) {
            is_legacy = is_legacy || text.find(kLegacyTagName) != std::string::npos;
        } else if (is_legacy) {
            value = text.substr(0, kLongestId);
        }
        string_tag.v_skipChild(child);
    }
    return is_legacy ? std::optional(value) : std::nullopt;
}

std::size_t n_readLinkNumberTags(PptRecord& tags, std::uint64_t capacity,
                                 std::vector<std::string>& entries) {
    while (PptRecord* child = tags.ps_nextChild()) {
        if (!child->is(RT_ProgStringTag)) {
            tags.v_skipChild(*child);
            continue;
        }
        std::optional<std::string> value = legacy_tag_value(*child);
        child->v_skipRest();
        if (value && entries.size() < capacity) {
            entries.push_back(std::move(*value));
        }
    }
    return entries.size();
}

LegacyTagIds::LegacyTagIds(LinkTable& links)
    : links_(links.links()) {
    const auto is_hyperlink = [](const LinkRecord& link) {
        return link.record_type == RT_ExternalHyperlink;
    };
    const auto count =
        static_cast<std::size_t>(std::count_if(links_.begin(), links_.end(), is_hyperlink));
    hyperlinks_.reserve(count);
    others_.reserve(links_.size() - count);
    for (const LinkRecord& link : links_) {
        (is_hyperlink(link) ? hyperlinks_ : others_).push_back(link.table_index);
        first_of_page_.try_emplace(link.slide_index, link.table_index);
    }
}

void LegacyTagIds::v_assignTagIds(std::int32_t slide_index,
                                  const std::vector<std::string>& entries) {
    const auto first = first_of_page_.find(slide_index);
    if (first == first_of_page_.end()) {
        return;
    }
    const auto left = assign(hyperlinks_, first->second, entries.begin(), entries.end());
    assign(others_, first->second, left, entries.end());
}

// Gives the entries, one each, to the targets from the table index `start` on; returns the first
// entry that found no target.
LegacyTagIds::Entries::const_iterator
LegacyTagIds::assign(const std::vector<std::uint32_t>& targets, std::uint32_t start,
                     Entries::const_iterator entry, Entries::const_iterator end) {
    auto target = std::lower_bound(targets.begin(), targets.end(), start);
    for (; target != targets.end() && entry != end; ++target, ++entry) {
        id64& id = links_[*target].link_id;
        if (entry->empty()) {
            v_id64Set(&id, 1);
        } else {
            v_id64FromStr(&id, entry->c_str());
        }
    }
    return entry;
}

} // namespace ppt

#include "rewriter/page_links.h"

#include "common_new/SafeFunc/paths.h"
#include "plugin/state.h"

#include <algorithm>
#include <deque>
#include <string>

namespace ppt {

namespace {

constexpr char kParagraphMark = '\r';

// The displayed text was the path, apart from the paragraph mark that a range often includes.
bool text_was_path(const LinkRecord& link) {
    std::string text = link.hyperlink_text();
    while (!text.empty() && text.back() == kParagraphMark) {
        text.pop_back();
    }
    return b_pathsEqual(text.c_str(), link.initial_file_name.c_str());
}

// The document container's own objects are written or the rewrite fails; these may be left.
bool is_due_elsewhere(const LinkRecord& link) {
    const bool is_picture = link.record_type == 0;
    const bool is_ole_object = link.record_type == RT_ExternalOleLink;
    const bool is_text = link.record_type == RT_ExternalHyperlink &&
                         link.holder_persist_id != state().links.document_persist_id();
    return link.path_changed() &&
           (is_picture || is_ole_object || (is_text && b_textFollowsPath(link)));
}

} // namespace

bool b_liesInside(const LinkRecord& link, const PptRecord& record) {
    return link.stream_position > record.position &&
           link.stream_position - record.position <
               std::uint64_t{record.header.length} + kRecordHeaderSize;
}

bool b_rewritesTexts() {
    return state().has_option('e') || state().has_option('h');
}

bool b_textFollowsPath(const LinkRecord& link) {
    return b_rewritesTexts() && (!state().has_option('e') || text_was_path(link));
}

std::vector<std::uint32_t> links_not_written(const RewriteCopy& copy) {
    const auto is_missing = [&copy](const LinkRecord& link) {
        return is_due_elsewhere(link) && !copy.written_links[link.table_index];
    };
    const std::deque<LinkRecord>& links = state().links.links();
    std::vector<std::uint32_t> missing;
    missing.reserve(
        static_cast<std::size_t>(std::count_if(links.begin(), links.end(), is_missing)));
    for (const LinkRecord& link : links) {
        if (is_missing(link)) {
            missing.push_back(link.table_index);
        }
    }
    return missing;
}

} // namespace ppt

#include "rewriter/client_text_rewriter.h"

#include "plugin/link_table.h"
#include "plugin/state.h"
#include "rewriter/box_text.h"
#include "rewriter/page_links.h"

#include <deque>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace ppt {

namespace {

using Links = std::vector<const LinkRecord*>;

bool is_text(const PptRecord& record) {
    return !record.header.is_container() &&
           (record.is(RT_TextCharsAtom) || record.is(RT_TextBytesAtom));
}

// Reads all children.
std::size_t count_texts(PptRecord& text_box) {
    std::size_t count = 0;
    while (PptRecord* child = text_box.ps_nextChild()) {
        count += is_text(*child) ? 1 : 0;
        text_box.v_skipChild(*child);
    }
    return count;
}

// All links of the box, changed or not, by the position of their text: those beside `link` in the
// table that lie inside the box too.
std::unordered_map<std::uint32_t, Links> links_of(const PptRecord& text_box,
                                                  const LinkRecord& link) {
    const std::deque<LinkRecord>& table = state().links.links();
    const auto is_of_box = [&](const LinkRecord& other) {
        return other.holder_persist_id == link.holder_persist_id && b_liesInside(other, text_box);
    };
    std::size_t first = link.table_index;
    while (first > 0 && is_of_box(table[first - 1])) {
        --first;
    }
    std::unordered_map<std::uint32_t, Links> links;
    for (std::size_t i = first; i < table.size() && is_of_box(table[i]); ++i) {
        links[table[i].stream_position].push_back(&table[i]);
    }
    return links;
}

// Writes the children of a box, text by text: a text takes the records behind it along, up to the
// next text or its header. An empty text is a header with runs and no characters.
class BoxRewrite {
  public:
    BoxRewrite(RewriteCopy& copy, const PptRecord& text_box, const LinkRecord& link,
               std::size_t text_count)
        : copy_(copy)
        , links_(links_of(text_box, link))
        , is_only_text_(text_count == 1) {}

    // Returns the size change.
    std::int32_t write_children(PptRecord& text_box) {
        std::uint32_t type = 0;
        while (PptRecord* child = text_box.ps_nextChild()) {
            if (child->is(RT_TextHeaderAtom)) {
                type = child->u32_at(0);
                end_text();
                v_writeRecord(copy_, *child);
            } else if (is_text(*child)) {
                end_text();
                text_.emplace(*child, type);
            } else if (text_) {
                text_->add_follower(*child);
                text_box.v_skipChild(*child);
            } else {
                v_writeRecord(copy_, *child);
            }
        }
        end_text();
        return change_;
    }

  private:
    void end_text() {
        if (!text_) {
            return;
        }
        const std::uint32_t end = copy_.loaded.n_tellDocument();
        static const Links kNone;
        const auto links = links_.find(text_->position());
        change_ +=
            text_->write(links == links_.end() ? kNone : links->second, is_only_text_, copy_);
        text_.reset();
        copy_.loaded.v_seekDocument(end);
        copy_.v_notePositions();
    }

    RewriteCopy& copy_;
    std::unordered_map<std::uint32_t, Links> links_;
    bool is_only_text_;
    std::optional<BoxText> text_;
    std::int32_t change_ = 0;
};

} // namespace

std::int32_t n_rewriteClientText(PptRecord& text_box, const LinkRecord& link, RewriteCopy& copy) {
    const std::uint32_t header_position = n_openContainer(copy, text_box);
    BoxRewrite rewrite(copy, text_box, link, count_texts(text_box));
    copy.loaded.v_seekDocument(text_box.position);
    PptRecord again(text_box.owner);
    again.v_readHeader();
    const std::int32_t change = rewrite.write_children(again);
    v_fixRecordLength(copy, text_box, header_position, change);
    return change;
}

} // namespace ppt

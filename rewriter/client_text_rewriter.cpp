#include "rewriter/client_text_rewriter.h"

#include "plugin/link_table.h"
#include "plugin/state.h"
#include "rewriter/box_text.h"
#include "rewriter/page_links.h"

#include <deque>
#include <unordered_map>
#include <utility>
#include <vector>

namespace ppt {

namespace {

using Links = std::vector<const LinkRecord*>;

// The children of a box; containers without what is in them.
std::deque<PptRecord> read_children(PptRecord& text_box) {
    std::deque<PptRecord> records;
    while (PptRecord* child = text_box.ps_nextChild()) {
        PptRecord& kept = records.emplace_back(child->owner);
        kept.header = child->header;
        kept.position = child->position;
        kept.body = std::move(child->body);
        text_box.v_skipChild(*child);
    }
    return records;
}

// The texts of a box, each with the records behind it.
std::vector<BoxText> texts_of(std::deque<PptRecord>& records) {
    std::vector<BoxText> texts;
    std::uint32_t type = 0;
    bool in_text = false; // an empty text is a header with runs and no characters
    for (PptRecord& record : records) {
        if (record.is(RT_TextHeaderAtom)) {
            type = record.u32_at(0);
            in_text = false;
        } else if (record.is(RT_TextCharsAtom) || record.is(RT_TextBytesAtom)) {
            texts.emplace_back(record, type);
            in_text = true;
        } else if (in_text) {
            texts.back().add_follower(record);
        }
    }
    return texts;
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

std::int32_t replace_texts(std::deque<PptRecord>& records, const PptRecord& text_box,
                           const LinkRecord& link, RewriteCopy& copy) {
    std::unordered_map<std::uint32_t, Links> links = links_of(text_box, link);
    std::vector<BoxText> texts = texts_of(records);
    std::int32_t sum = 0;
    for (BoxText& text : texts) {
        sum += text.replace(links[text.position()], texts.size() == 1, copy.written_links);
    }
    return sum;
}

} // namespace

std::int32_t n_rewriteClientText(PptRecord& text_box, const LinkRecord& link, RewriteCopy& copy) {
    const std::uint32_t header_position = n_openContainer(copy);
    std::deque<PptRecord> records = read_children(text_box);
    const std::uint32_t end = copy.loaded.n_tellDocument();
    const std::int32_t change = replace_texts(records, text_box, link, copy);
    for (const PptRecord& record : records) {
        v_writeRecord(copy, record);
    }
    copy.loaded.v_seekDocument(end);
    copy.v_notePositions();
    v_fixRecordLength(copy, text_box, header_position, change);
    return change;
}

} // namespace ppt

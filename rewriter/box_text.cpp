#include "rewriter/box_text.h"

#include "common_new/common/conversion.h"
#include "reader/client_text.h"
#include "reader/utf16.h"
#include "rewriter/page_links.h"
#include "rewriter/record_writer.h"
#include "rewriter/text_runs.h"

#include <algorithm>

namespace ppt {

namespace {

constexpr std::size_t kMostReplacements = 1000;
constexpr WCHAR kParagraphMark = 0x0D;
constexpr std::size_t kRangeSize = 8; // start and end

} // namespace

BoxText::BoxText(PptRecord& atom, std::uint32_t type)
    : atom_(atom)
    , type_(type)
    , units_(units_of_text_atom(atom))
    , holds_ansi_bytes_(b_holdsAnsiBytes(atom)) {}

void BoxText::add_follower(PptRecord& record) {
    if (b_holdsRuns(record)) {
        runs_.push_back(&record);
    } else if (record.is(RT_TextInteractiveInfoAtom) && record.body.size() >= kRangeSize) {
        ranges_.push_back(&record);
        range_starts_.insert(record.u32_at(0));
    }
}

std::int32_t BoxText::replace(const std::vector<const LinkRecord*>& links, bool is_only_text,
                              std::vector<bool>& written) {
    const bool is_replaceable = type_ == 4 || type_ == 6;
    if (!is_replaceable) {
        return 0;
    }
    std::vector<Change> changes = changes_of(links, is_only_text);
    if (changes.empty() || !explains_runs()) {
        return 0;
    }
    // A click and a mouse-over link may share their words; the first one's path is what they
    // become.
    std::vector<Change> applied;
    for (Change& change : changes) {
        const bool overlaps = !applied.empty() && change.start < applied.back().end;
        const bool is_same = overlaps && change.start == applied.back().start &&
                             change.end == applied.back().end &&
                             change.words == applied.back().words;
        if (is_same || !overlaps) {
            written[change.link->table_index] = true;
        }
        if (!overlaps) {
            applied.push_back(std::move(change));
        }
    }
    const Units text = apply(applied);
    for (PptRecord* runs : runs_) {
        v_adjustTextRuns(*runs, length(), replacements_);
    }
    move_ranges(links);
    return store(text);
}

// In the order of the text.
std::vector<BoxText::Change> BoxText::changes_of(const std::vector<const LinkRecord*>& links,
                                                 bool is_only_text) const {
    std::vector<Change> changes;
    for (const LinkRecord* link : links) {
        if (!link->path_changed() || !b_textFollowsPath(*link)) {
            continue;
        }
        if (changes.size() == kMostReplacements) {
            break;
        }
        Change change;
        if (find_range(*link, change) && (is_only_text || range_starts_.contains(change.start))) {
            change.words = words_of(*link);
            changes.push_back(std::move(change));
        }
    }
    std::stable_sort(changes.begin(), changes.end(),
                     [](const Change& a, const Change& b) { return a.start < b.start; });
    return changes;
}

// What the link covers of this text, without the paragraph marks at its end: replacing those would
// join two paragraphs.
bool BoxText::find_range(const LinkRecord& link, Change& change) const {
    const bool is_range = link.text_range_start >= 0 &&
                          link.text_range_start <= link.text_range_end &&
                          static_cast<std::uint32_t>(link.text_range_start) <= length();
    if (!is_range) {
        return false;
    }
    change.link = &link;
    change.start = static_cast<std::uint32_t>(link.text_range_start);
    change.end = std::min(static_cast<std::uint32_t>(link.text_range_end), length());
    while (change.end > change.start && units_[change.end - 1] == kParagraphMark) {
        --change.end;
    }
    return true;
}

BoxText::Units BoxText::words_of(const LinkRecord& link) const {
    if (!holds_ansi_bytes_) {
        return wide_from_ansi(link.file_name);
    }
    Units words;
    for (const char byte : link.file_name.text()) {
        words.push_back(static_cast<unsigned char>(byte));
    }
    return words;
}

bool BoxText::explains_runs() const {
    return std::all_of(runs_.begin(), runs_.end(),
                       [this](const PptRecord* runs) { return b_explainsRuns(*runs, length()); });
}

// The new text; notes what it replaces.
BoxText::Units BoxText::apply(const std::vector<Change>& changes) {
    Units text;
    std::uint32_t copied = 0;
    for (const Change& change : changes) {
        text.append(units_, copied, change.start - copied);
        const auto new_start = static_cast<std::uint32_t>(text.size());
        text += change.words;
        const auto new_end = static_cast<std::uint32_t>(text.size());
        replacements_.add({change.start, change.end, new_start, new_end});
        copied = change.end;
    }
    return text.append(units_, copied);
}

// A bytes atom whose new text does not fit one byte for each character becomes a characters atom.
std::int32_t BoxText::store(const Units& text) {
    constexpr WCHAR kHighestByte = 0xFF;
    const bool fits_bytes =
        std::all_of(text.begin(), text.end(), [](WCHAR unit) { return unit <= kHighestByte; });
    if (!atom_.is(RT_TextBytesAtom) || !fits_bytes) {
        atom_.header.type = RT_TextCharsAtom;
        return n_setBody(atom_, utf16_bytes(text));
    }
    bytes::Bytes body;
    body.reserve(text.size());
    for (const WCHAR unit : text) {
        body.push_back(static_cast<std::uint8_t>(unit));
    }
    return n_setBody(atom_, std::move(body));
}

// Every range moves with its words, so also those of links that did not change. Only a replaced
// stretch at whose start no range begins gives its place to a range that is no known link's, in the
// order in which both stand.
void BoxText::move_ranges(const std::vector<const LinkRecord*>& links) {
    std::unordered_set<std::uint32_t> link_starts;
    for (const LinkRecord* link : links) {
        link_starts.insert(static_cast<std::uint32_t>(link->text_range_start));
    }
    std::vector<TextReplacement> without_range;
    for (const TextReplacement& replacement : replacements_.all()) {
        if (!range_starts_.contains(replacement.old_start)) {
            without_range.push_back(replacement);
        }
    }
    auto next = without_range.begin();
    for (PptRecord* range : ranges_) {
        std::uint32_t start = range->u32_at(0);
        std::uint32_t end = range->u32_at(4);
        if (link_starts.contains(start) || next == without_range.end()) {
            start = replacements_.moved_start(start);
            end = replacements_.moved_end(end);
        } else {
            start = next->new_start;
            end = next->new_end;
            ++next;
        }
        bytes::store_u32(range->body, 0, start);
        bytes::store_u32(range->body, 4, end);
    }
}

} // namespace ppt

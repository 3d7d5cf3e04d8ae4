#include "rewriter/box_text.h"

#include "common_new/common/conversion.h"
#include "reader/client_text.h"
#include "reader/utf16.h"
#include "rewriter/page_links.h"
#include "rewriter/record_writer.h"
#include "rewriter/text_runs.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace ppt {

namespace {

constexpr std::size_t kMostReplacements = 1000;
constexpr WCHAR kParagraphMark = 0x0D;
constexpr std::size_t kRangeSize = 8; // start and end

bool is_range(const PptRecord& record) {
    return record.is(RT_TextInteractiveInfoAtom) && record.body.size() >= kRangeSize;
}

// Two places in the text that no link stands for.
bool is_bookmark(const PptRecord& record) {
    return record.is(RT_TextBookmarkAtom) && record.body.size() >= kRangeSize;
}

// Begins with the place of a character that stands for a page number, a date, a header or a footer.
bool is_field(const PptRecord& record) {
    const bool has_the_type =
        record.is(RT_SlideNumberMetaCharAtom) || record.is(RT_DateTimeMetaCharAtom) ||
        record.is(RT_GenericDateMetaCharAtom) || record.is(RT_HeaderMetaCharAtom) ||
        record.is(RT_FooterMetaCharAtom) || record.is(RT_RtfDateTimeMetaCharAtom);
    return has_the_type && record.body.size() >= 4;
}

} // namespace

BoxText::BoxText(PptRecord& atom, std::uint32_t type)
    : atom_(atom.owner)
    , type_(type)
    , holds_ansi_bytes_(b_holdsAnsiBytes(atom))
    , length_(static_cast<std::uint32_t>(atom.is(RT_TextBytesAtom) ? atom.body.size()
                                                                   : atom.body.size() / 2)) {
    atom_.header = atom.header;
    atom_.position = atom.position;
    atom_.body = std::move(atom.body);
}

void BoxText::add_follower(const PptRecord& record) {
    followers_.push_back(record.position);
    if (is_range(record)) {
        ranges_.push_back({record.u32_at(0), record.u32_at(4)});
    } else if (is_field(record)) {
        fields_.push_back(record.u32_at(0));
    }
}

std::int32_t BoxText::write(const std::vector<const LinkRecord*>& links, bool is_only_text,
                            RewriteCopy& copy) {
    std::int32_t change = 0;
    const bool is_replaceable = type_ == 4 || type_ == 6;
    if (is_replaceable && !links.empty()) {
        for (const Range& range : ranges_) {
            range_starts_.push_back(range.start);
        }
        std::sort(range_starts_.begin(), range_starts_.end());
        std::sort(fields_.begin(), fields_.end());
        std::vector<Change> changes = changes_of(links, is_only_text);
        if (!changes.empty() && explains_runs(copy.loaded)) {
            change = replace(std::move(changes), links, copy);
        }
    }
    v_writeRecord(copy, atom_);
    write_followers(copy);
    return change;
}

std::int32_t BoxText::replace(std::vector<Change> changes,
                              const std::vector<const LinkRecord*>& links, RewriteCopy& copy) {
    // A click and a mouse-over link may share their words; the first one's path is what they
    // become.
    std::vector<Change> applied;
    for (Change& change : changes) {
        const bool overlaps = !applied.empty() && change.start < applied.back().end;
        const bool is_same = overlaps && change.start == applied.back().start &&
                             change.end == applied.back().end &&
                             change.words == applied.back().words;
        if (is_same || !overlaps) {
            copy.written_links[change.link->table_index] = true;
        }
        if (!overlaps) {
            applied.push_back(std::move(change));
        }
    }
    const Units text = apply(applied);
    move_ranges(links);
    return store(text);
}

void BoxText::write_followers(RewriteCopy& copy) const {
    auto range = ranges_.begin();
    PptRecord record(atom_.owner);
    for (const std::uint32_t position : followers_) {
        copy.loaded.v_seekDocument(position);
        record.v_readRecord();
        if (is_range(record)) {
            bytes::store_u32(record.body, 0, range->start);
            bytes::store_u32(record.body, 4, range->end);
            ++range;
        } else if (is_bookmark(record)) {
            bytes::store_u32(record.body, 0, replacements_.moved_start(record.u32_at(0)));
            bytes::store_u32(record.body, 4, replacements_.moved_end(record.u32_at(4)));
        } else if (is_field(record)) {
            bytes::store_u32(record.body, 0, replacements_.moved_start(record.u32_at(0)));
        } else if (b_holdsRuns(record) && !replacements_.all().empty()) {
            v_adjustTextRuns(record, length_, replacements_);
        }
        v_writeRecord(copy, record);
    }
}

WCHAR BoxText::unit(std::uint32_t at) const {
    return static_cast<WCHAR>(atom_.is(RT_TextBytesAtom)
                                  ? atom_.body[at]
                                  : bytes::load_u16(atom_.body, 2 * std::size_t{at}));
}

bool BoxText::starts_a_range(std::uint32_t start) const {
    return std::binary_search(range_starts_.begin(), range_starts_.end(), start);
}

// In the order of the text.
std::vector<BoxText::Change> BoxText::changes_of(const std::vector<const LinkRecord*>& links,
                                                 bool is_only_text) {
    std::vector<Change> changes;
    for (const LinkRecord* link : links) {
        if (!link->path_changed() || !b_textFollowsPath(*link)) {
            continue;
        }
        if (changes.size() == kMostReplacements) {
            break;
        }
        const auto start = static_cast<std::uint32_t>(link->text_range_start);
        Change change;
        if ((is_only_text || starts_a_range(start)) && find_range(*link, change)) {
            change.words = words_of(*link);
            changes.push_back(std::move(change));
        }
    }
    std::stable_sort(changes.begin(), changes.end(),
                     [](const Change& a, const Change& b) { return a.start < b.start; });
    return changes;
}

// What the link covers of this text, without the paragraph marks at its end: replacing those would
// join two paragraphs. A link that covers no more than such marks has no words to replace.
bool BoxText::find_range(const LinkRecord& link, Change& change) {
    const bool is_range = link.text_range_start >= 0 &&
                          link.text_range_start <= link.text_range_end &&
                          static_cast<std::uint32_t>(link.text_range_start) <= length_;
    if (!is_range) {
        return false;
    }
    change.link = &link;
    change.start = static_cast<std::uint32_t>(link.text_range_start);
    const std::uint32_t end = std::min(static_cast<std::uint32_t>(link.text_range_end), length_);
    change.end = end_of_words(end);
    return change.start < change.end && !holds_a_field(change);
}

// Replaced, such a character would leave one of the new words to be filled in.
bool BoxText::holds_a_field(const Change& change) const {
    const auto field = std::lower_bound(fields_.begin(), fields_.end(), change.start);
    return field != fields_.end() && *field < change.end;
}

// Where the paragraph marks in front of `end` begin. Many ranges may end in the same stretch of
// them, in any order, so none is looked at twice.
std::uint32_t BoxText::end_of_words(std::uint32_t end) {
    const auto behind = mark_stretches_.upper_bound(end);
    const bool is_first = behind == mark_stretches_.begin();
    const auto before = is_first ? behind : std::prev(behind);
    const std::uint32_t seen_up_to = is_first ? 0 : before->second;
    std::uint32_t at = end;
    while (at > seen_up_to && unit(at - 1) == kParagraphMark) {
        --at;
    }
    if (is_first || at > seen_up_to) {
        mark_stretches_.emplace(at, end);
        return at;
    }
    before->second = std::max(seen_up_to, end);
    return before->first;
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

bool BoxText::explains_runs(PptPresentation& loaded) const {
    PptRecord record(atom_.owner);
    return std::all_of(followers_.begin(), followers_.end(), [&](std::uint32_t position) {
        loaded.v_seekDocument(position);
        record.v_readRecord();
        return !b_holdsRuns(record) || b_explainsRuns(record, length_);
    });
}

// The new text; notes what it replaces.
BoxText::Units BoxText::apply(const std::vector<Change>& changes) {
    std::size_t size = length_;
    for (const Change& change : changes) {
        size += change.words.size();
    }
    Units text;
    text.reserve(size);
    std::uint32_t copied = 0;
    const auto copy_up_to = [&](std::uint32_t end) {
        for (; copied < end; ++copied) {
            text.push_back(unit(copied));
        }
    };
    for (const Change& change : changes) {
        copy_up_to(change.start);
        const auto new_start = static_cast<std::uint32_t>(text.size());
        text += change.words;
        const auto new_end = static_cast<std::uint32_t>(text.size());
        replacements_.add({change.start, change.end, new_start, new_end});
        copied = change.end;
    }
    copy_up_to(length_);
    return text;
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
        if (!starts_a_range(replacement.old_start)) {
            without_range.push_back(replacement);
        }
    }
    auto next = without_range.begin();
    for (Range& range : ranges_) {
        if (link_starts.contains(range.start) || next == without_range.end()) {
            range = {replacements_.moved_start(range.start), replacements_.moved_end(range.end)};
        } else {
            range = {next->new_start, next->new_end};
            ++next;
        }
    }
}

} // namespace ppt

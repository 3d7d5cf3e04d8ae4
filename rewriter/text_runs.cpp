#include "rewriter/text_runs.h"

#include "rewriter/text_run_layouts.h"

#include <algorithm>
#include <optional>
#include <span>
#include <vector>

namespace ppt {

namespace {

struct Run {
    std::uint32_t offset = 0; // of its count in the body
    std::uint64_t end = 0;    // behind its last character; it begins where the one before it ends
};

using Runs = std::vector<Run>;

// A run of a damaged file may claim that many, and does not grow any more then.
constexpr std::uint64_t kMostInRun = 0xFFFFFFFF;

void skip_properties(bytes::Cursor& cursor, const RunLayout& layout) {
    cursor.skip(layout.size_before_mask);
    if (layout.fields.empty()) {
        return;
    }
    const std::uint32_t mask = cursor.u32();
    for (const RunField& field : layout.fields) {
        if ((mask & field.bits) != 0) {
            cursor.skip(field.size);
        }
    }
    if ((mask & layout.list_bit) != 0) {
        const std::size_t values = cursor.u32();
        cursor.skip(4 * std::min(values, cursor.remaining()));
    }
}

// The runs that together reach behind the last character, or as many as there are.
Runs read_runs(bytes::Cursor& cursor, const RunLayout& layout, std::uint32_t length) {
    constexpr std::size_t kSmallestRun = 6; // count and indent level
    Runs runs;
    runs.reserve(cursor.remaining() / kSmallestRun);
    std::uint64_t end = 0;
    while (cursor.ok() && end <= length && cursor.remaining() > 0) {
        const auto offset = static_cast<std::uint32_t>(cursor.position());
        end += cursor.u32();
        runs.push_back({offset, end});
        skip_properties(cursor, layout);
    }
    return runs;
}

// All passes over the atom; null when they do not end where it ends.
std::optional<std::vector<Runs>> all_runs(const PptRecord& atom, std::uint32_t length) {
    bytes::Cursor cursor(atom.body);
    std::vector<Runs> passes;
    if (atom.is(RT_StyleTextPropAtom)) {
        passes.push_back(read_runs(cursor, kParagraphRun, length));
        passes.push_back(read_runs(cursor, kCharacterRun, length));
    } else {
        const bool is_master = atom.is(RT_MasterTextPropAtom);
        passes.push_back(read_runs(cursor, is_master ? kMasterTextRun : kSpecialInfoRun, length));
    }
    const bool explained = cursor.ok() && cursor.remaining() == 0;
    return explained ? std::optional(std::move(passes)) : std::nullopt;
}

// What a run from `begin` up to `end` shares with a stretch of the old text.
std::uint64_t shared(std::uint64_t begin, std::uint64_t end, const TextReplacement& stretch) {
    begin = std::max<std::uint64_t>(begin, stretch.old_start);
    end = std::min<std::uint64_t>(end, stretch.old_end);
    return begin < end ? end - begin : 0;
}

void adjust(bytes::Bytes& body, const Runs& runs, std::span<const TextReplacement> stretches) {
    auto stretch = stretches.begin();
    std::uint64_t begin = 0;
    for (const Run& run : runs) {
        std::uint64_t count = run.end - begin;
        while (stretch != stretches.end() && stretch->old_start < run.end) {
            count -= shared(begin, run.end, *stretch);
            if (stretch->old_start >= begin) {
                count += stretch->new_end - stretch->new_start;
            }
            const bool goes_on = stretch->old_end > run.end;
            if (goes_on) {
                break;
            }
            ++stretch;
        }
        bytes::store_u32(body, run.offset,
                         static_cast<std::uint32_t>(std::min<std::uint64_t>(count, kMostInRun)));
        begin = run.end;
    }
}

} // namespace

bool b_holdsRuns(const PptRecord& record) {
    return record.is(RT_StyleTextPropAtom) || record.is(RT_TextSpecialInfoAtom) ||
           record.is(RT_MasterTextPropAtom);
}

bool b_explainsRuns(const PptRecord& atom, std::uint32_t length) {
    return all_runs(atom, length).has_value();
}

void v_adjustTextRuns(PptRecord& atom, std::uint32_t length, const TextReplacements& replacements) {
    const std::optional<std::vector<Runs>> passes = all_runs(atom, length);
    if (!passes) {
        return;
    }
    for (const Runs& runs : *passes) {
        adjust(atom.body, runs, replacements.all());
    }
}

} // namespace ppt

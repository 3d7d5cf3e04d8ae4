// The runs of a text that is replaced in places: they go on explaining it, cover as much more or
// less as the text grew or shrank, and nothing but their counts changes.
#include "rewriter/text_runs.h"
#include "fuzz/support/target.h"
#include "reader/record.h"
#include "reader/record_types.h"
#include "rewriter/text_replacement.h"

#include <algorithm>
#include <iterator>

namespace {

using fuzz::require;

// Stretches in the order of the text that lie inside it. Each holds a character, since the end of a
// text may stand before an empty one or behind it.
ppt::TextReplacements replacements(bytes::Cursor& input, std::uint32_t length,
                                   std::uint32_t& new_length) {
    ppt::TextReplacements result;
    std::uint32_t old_end = 0;
    std::uint32_t new_end = 0;
    for (int left = input.u8() % 6; left > 0 && old_end < length; --left) {
        const std::uint32_t gap = std::min<std::uint32_t>(input.u8(), length - old_end);
        const std::uint32_t size = std::min<std::uint32_t>(input.u8() + 1U, length - old_end - gap);
        if (size == 0) {
            break;
        }
        const std::uint32_t new_size = input.u8();
        const std::uint32_t start = new_end + gap;
        result.add({old_end + gap, old_end + gap + size, start, start + new_size});
        old_end += gap + size;
        new_end = start + new_size;
    }
    new_length = new_end + (length - old_end);
    return result;
}

} // namespace

// The input is the kind of atom, the length of the text, the replacements, and the atom's body.
void fuzz::test_one(bytes::View data) {
    bytes::Cursor input(data);
    ppt::PptRecord atom(nullptr);
    constexpr std::uint16_t kKinds[] = {ppt::RT_StyleTextPropAtom, ppt::RT_TextSpecialInfoAtom,
                                        ppt::RT_MasterTextPropAtom};
    atom.header.type = kKinds[input.u8() % std::size(kKinds)];
    const std::uint32_t length = input.u16();
    std::uint32_t new_length = 0;
    const ppt::TextReplacements stretches = replacements(input, length, new_length);
    const bytes::View body = input.take(input.remaining());
    atom.body.assign(body.begin(), body.end());
    const bool explained = ppt::b_explainsRuns(atom, length);
    ppt::v_adjustTextRuns(atom, length, stretches);
    require(atom.body.size() == body.size(), "runs keep their room");
    if (!explained) {
        require(std::equal(body.begin(), body.end(), atom.body.begin()),
                "runs that are not understood stay as they are");
        return;
    }
    require(ppt::b_explainsRuns(atom, new_length), "the runs explain the new text");
    require(stretches.moved_end(length) == new_length, "the end of the text moves with it");
}

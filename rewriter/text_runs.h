// The runs of a text: how many characters share the same properties ([MS-PPT] StyleTextPropAtom,
// TextSpecialInfoAtom, MasterTextPropAtom). Together they cover the text and the paragraph mark
// behind it that is not stored.
#pragma once

#include "reader/record.h"
#include "rewriter/text_replacement.h"

#include <cstdint>

namespace ppt {

// Whether the atom holds runs at all.
bool b_holdsRuns(const PptRecord& record);

// Whether the layouts explain the runs of a text of `length` characters to the last byte.
bool b_explainsRuns(const PptRecord& atom, std::uint32_t length);

// Changes the run counts for a text whose stretches were replaced: new words belong to the run that
// holds the start of what they replace, and the runs behind it lose what they shared of it, so that
// the sum of the counts changes as the text does. Runs that are not explained stay as they are.
// Cost: linear in the runs and replacements.
void v_adjustTextRuns(PptRecord& atom, std::uint32_t length, const TextReplacements& replacements);

} // namespace ppt

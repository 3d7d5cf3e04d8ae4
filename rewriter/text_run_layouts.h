// How the runs of a text are laid out ([MS-PPT] TextPFRun, TextCFRun, TextSIRun,
// MasterTextPropRun): a 32-bit count of characters, a fixed part, a 32-bit mask, and behind it the
// fields whose mask bits are set.
#pragma once

#include <cstdint>
#include <span>

namespace ppt {

// `size` bytes are there when any of the bits is set.
struct RunField {
    std::uint32_t bits = 0;
    std::uint32_t size = 0;
};

struct RunLayout {
    std::uint32_t size_before_mask = 0; // behind the count
    std::span<const RunField> fields;   // none: there is no mask either
    std::uint32_t list_bit = 0; // a 32-bit count and as many 32-bit values, behind the fields
};

extern const RunLayout kParagraphRun;
extern const RunLayout kCharacterRun;
extern const RunLayout kSpecialInfoRun;
extern const RunLayout kMasterTextRun;

} // namespace ppt

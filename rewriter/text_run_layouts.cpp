#include "rewriter/text_run_layouts.h"

#include <array>

namespace ppt {

namespace {

// Fields without a remark are reserved ones that take room all the same.
constexpr std::array kParagraphFields = {
    RunField{0x0000000F, 2},                          // bullet flags
    RunField{0x00000010, 2},                          // bullet font
    RunField{0x00000020, 4},                          // bullet color
    RunField{0x00000040, 2},                          // bullet size
    RunField{0x00000080, 2},                          // bullet character
    RunField{0x00000100, 2},                          // left margin
    RunField{0x00000200, 2}, RunField{0x00000400, 2}, // indent
    RunField{0x00000800, 2},                          // alignment
    RunField{0x00001000, 2},                          // line spacing
    RunField{0x00002000, 2},                          // space before
    RunField{0x00004000, 2},                          // space after
    RunField{0x00008000, 2},                          // default tab size
    RunField{0x00010000, 2},                          // font alignment
    RunField{0x000E0000, 2},                          // wrap flags
    RunField{0x00200000, 2},                          // text direction
    RunField{0x00400000, 2},
};

constexpr std::array kCharacterFields = {
    RunField{0x0000FFFF, 2},                          // font style
    RunField{0x00010000, 2},                          // typeface
    RunField{0x00020000, 2},                          // size
    RunField{0x00040000, 4},                          // color
    RunField{0x00080000, 2},                          // position
    RunField{0x00100000, 2}, RunField{0x00200000, 2}, // old East Asian typeface
    RunField{0x00400000, 2},                          // ANSI typeface
    RunField{0x00800000, 2},                          // symbol typeface
    RunField{0x01000000, 2},                          // East Asian typeface
    RunField{0x02000000, 2},                          // complex script typeface
};

constexpr std::array kSpecialInfoFields = {
    RunField{0x0001, 2},                      // spelling
    RunField{0x0002, 2},                      // language
    RunField{0x0004, 2},                      // alternative language
    RunField{0x0020, 4}, RunField{0x0040, 2}, // bidirectional
};
constexpr std::uint32_t kSmartTags = 0x0200;

} // namespace

constinit const RunLayout kParagraphRun{2, kParagraphFields, 0};
constinit const RunLayout kCharacterRun{0, kCharacterFields, 0};
constinit const RunLayout kSpecialInfoRun{0, kSpecialInfoFields, kSmartTags};
constinit const RunLayout kMasterTextRun{2, {}, 0}; // indent level

} // namespace ppt

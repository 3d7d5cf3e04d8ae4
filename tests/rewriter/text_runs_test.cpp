// The layouts of text runs and the counts that follow a replacement.
#include "rewriter/text_runs.h"
#include "tests/support/record_builder.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using namespace ppt;
using presentation_builder::TextRun;

PptRecord& fill(PptRecord& record, const bytes::Bytes& data) {
    record.header.type = bytes::load_u16(data, 2);
    record.body.assign(data.begin() + 8, data.end());
    return record;
}

// The mask bits of a run and the bytes that they put behind it, all of them together.
struct Properties {
    std::uint32_t mask;
    std::size_t size;
};

const std::array kParagraphProperties = {
    Properties{0x1, 2},        Properties{0x8, 2},      Properties{0xF, 2},
    Properties{0x10, 2},       Properties{0x20, 4},     Properties{0x40, 2},
    Properties{0x10000, 2},    Properties{0x1FFF0, 28}, Properties{0xE0000, 2},
    Properties{0x100000, 0},   Properties{0x200000, 2}, Properties{0x400000, 2},
    Properties{0xFFFFFFFF, 36}};
const std::array kCharacterProperties = {
    Properties{0x1, 2},       Properties{0x8000, 2},    Properties{0xFFFF, 2},
    Properties{0x10000, 2},   Properties{0x40000, 4},   Properties{0x100000, 2},
    Properties{0x2000000, 2}, Properties{0x4000000, 0}, Properties{0xFFFFFFFF, 24}};
const std::array kSpecialInfoProperties = {Properties{0x7, 6}, Properties{0x18, 0},
                                           Properties{0x20, 4}, Properties{0x40, 2},
                                           Properties{0x180, 0}};

// Two characters of the second of two runs become five.
TextReplacements replace_second() {
    TextReplacements replacements;
    replacements.add({6, 8, 6, 11});
    return replacements;
}

std::vector<TextRun> two_runs(const Properties& properties) {
    const TextRun run{5, properties.mask, bytes::Bytes(properties.size, 0x11)};
    return {run, run};
}

TEST(TextRuns, LayoutsLeadToTheNextRun) {
    const std::array plain = {TextRun{10}};
    for (const Properties& properties : kParagraphProperties) {
        std::vector<TextRun> runs = two_runs(properties);
        PptRecord atom(nullptr);
        fill(atom, presentation_builder::text_style(runs, plain));
        EXPECT_TRUE(b_explainsRuns(atom, 9)) << std::hex << properties.mask;
        v_adjustTextRuns(atom, 9, replace_second());
        runs[1].count = 8;
        const std::array longer = {TextRun{13}};
        PptRecord expected(nullptr);
        EXPECT_EQ(atom.body, fill(expected, presentation_builder::text_style(runs, longer)).body);
    }
    for (const Properties& properties : kCharacterProperties) {
        PptRecord atom(nullptr);
        fill(atom, presentation_builder::text_style(plain, two_runs(properties)));
        EXPECT_TRUE(b_explainsRuns(atom, 9)) << std::hex << properties.mask;
    }
    for (const Properties& properties : kSpecialInfoProperties) {
        PptRecord atom(nullptr);
        fill(atom, presentation_builder::text_special_info(two_runs(properties)));
        EXPECT_TRUE(b_explainsRuns(atom, 9)) << std::hex << properties.mask;
    }
}

TEST(TextRuns, ARunWithoutEndDoesNotBecomeAShortOne) {
    const TextRun endless{0xFFFFFFFF};
    PptRecord atom(nullptr);
    fill(atom, presentation_builder::text_special_info({&endless, 1}));
    const bytes::Bytes before = atom.body;
    v_adjustTextRuns(atom, 9, replace_second());
    EXPECT_EQ(atom.body, before);
}

TEST(TextRuns, ListOfSmartTagsIsBelievedOnlyAsFarAsItReaches) {
    for (const auto& [count, explained] :
         {std::pair(2U, true), {1U, false}, {0xFFFFFFFFU, false}}) {
        TextRun run{10, 0x202, bytes::Bytes(2 + 4 + 8)};
        bytes::store_u32(run.fields, 2, count);
        PptRecord atom(nullptr);
        fill(atom, presentation_builder::text_special_info({&run, 1}));
        EXPECT_EQ(b_explainsRuns(atom, 9), explained) << count;
    }
}

TEST(TextReplacement, PlacesMoveByWhatChangedBeforeThem) {
    TextReplacements replacements; // "ab[cde]fg[h]i" becomes "ab[X]fg[YYYY]i"
    replacements.add({2, 5, 2, 3});
    replacements.add({7, 8, 5, 9});
    struct Case {
        std::uint32_t old_start, old_end, new_start, new_end;
    };
    for (const Case& range :
         {Case{0, 2, 0, 2}, Case{2, 5, 2, 3}, Case{0, 9, 0, 10}, Case{5, 7, 3, 5}, Case{3, 4, 3, 3},
          Case{7, 8, 5, 9}, Case{8, 10, 9, 11}, Case{4, 6, 3, 4}}) {
        EXPECT_EQ(replacements.moved_start(range.old_start), range.new_start);
        EXPECT_EQ(replacements.moved_end(range.old_end), range.new_end);
    }
}

} // namespace

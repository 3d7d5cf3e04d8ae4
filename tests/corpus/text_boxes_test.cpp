// The text boxes of real presentations when every displayed text follows its path: each container
// ends where its last child does, runs still cover the text, and each link keeps its own words.
#include "reader/presentation.h"
#include "rewriter/text_run_layouts.h"
#include "tests/corpus/corpus_fixture.h"
#include "tests/plugin/stored_file.h"
#include "tests/support/record_finder.h"
#include "tests/support/record_types.h"

namespace {

using namespace corpus_test;
using namespace presentation_builder;
using namespace presentation_builder::record_type;
using Totals = std::vector<std::uint64_t>;

class TextBoxes : public Corpus {
  protected:
    void SetUp() override {
        Corpus::SetUp();
        j_termDLL(0, 0);
        start("ht");
    }
};

// The characters of the runs until they reach behind the last one, as the counts say.
std::uint64_t run_total(bytes::Cursor& cursor, const ppt::RunLayout& layout, std::uint64_t length) {
    std::uint64_t total = 0;
    while (cursor.ok() && total <= length && cursor.remaining() > 0) {
        total += cursor.u32();
        cursor.skip(layout.size_before_mask);
        const std::uint32_t mask = cursor.u32();
        for (const ppt::RunField& field : layout.fields) {
            cursor.skip((mask & field.bits) != 0 ? field.size : 0);
        }
        if ((mask & layout.list_bit) != 0) {
            cursor.skip(4 * std::min<std::size_t>(cursor.u32(), cursor.remaining()));
        }
    }
    return total;
}

// Whether the runs of the atom add up to the text and the mark behind it, to the last byte.
bool covers(View body, std::uint16_t type, std::uint64_t length) {
    bytes::Cursor cursor(body);
    Totals totals;
    if (type == kStyleTextAtom) {
        totals.push_back(run_total(cursor, ppt::kParagraphRun, length));
        totals.push_back(run_total(cursor, ppt::kCharacterRun, length));
    } else {
        totals.push_back(run_total(cursor, ppt::kSpecialInfoRun, length));
    }
    return cursor.ok() && cursor.remaining() == 0 && totals == Totals(totals.size(), length + 1);
}

// For each atom with runs below the record, whether they cover the text before them.
std::vector<bool> coverage(View stream, std::size_t object) {
    std::vector<bool> found;
    for (const RecordAt& box : find_all(stream, object, kArtClientTextbox)) {
        std::uint64_t length = 0;
        for (const RecordAt& child : children_of(stream, box)) {
            if (child.type == kTextHeaderAtom) {
                length = 0;
            } else if (child.type == kTextCharsAtom) {
                length = child.length / 2;
            } else if (child.type == kTextBytesAtom) {
                length = child.length;
            } else if (child.type == kStyleTextAtom || child.type == kTextSpecialInfoAtom) {
                found.push_back(
                    covers(stream.subspan(child.body(), child.length), child.type, length));
            }
        }
    }
    return found;
}

std::uint32_t offset_of(std::uint32_t persist_id) {
    return ppt::state().presentation->persist_directory().n_objectOffset(persist_id);
}

TEST_F(TextBoxes, StayWholeWhenTheirWordsFollowTheirPaths) {
    const std::vector<fs::path> files = readable_files();
    if (files.empty()) {
        GTEST_SKIP() << "no corpus of real presentations was found";
    }
    std::size_t texts = 0;
    std::size_t covered = 0;
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.string());
        rewritten_objects_.clear();
        load_file(file);
        const Bytes before = plugin_test::StoredFile(file.string()).document();
        std::map<std::uint32_t, std::vector<bool>> old_coverage;
        const Paths expected = change_all([](const std::string& path) { return path + "/more"; });
        for (const std::uint32_t id : rewritten_objects_) {
            old_coverage[id] = coverage(before, offset_of(id));
        }
        ASSERT_EQ(rewrite("once.ppt"), 0) << plugin_test::error_params();
        EXPECT_EQ(ppt::state().links_not_written, std::vector<std::uint32_t>{});
        ASSERT_EQ(load_again("once.ppt"), 0) << plugin_test::error_params();
        const Bytes after = plugin_test::StoredFile(path("once.ppt")).document();
        for (const auto& [id, were_covered] : old_coverage) {
            EXPECT_EQ(structure_faults(after, offset_of(id)), std::vector<std::string>{});
            const std::vector<bool> are_covered = coverage(after, offset_of(id));
            ASSERT_EQ(are_covered.size(), were_covered.size());
            for (std::size_t i = 0; i < were_covered.size(); ++i) {
                EXPECT_TRUE(are_covered[i] || !were_covered[i])
                    << "object " << id << ", atom " << i;
                covered += were_covered[i];
            }
        }
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const auto index = static_cast<std::int32_t>(i);
            if (!link_text(index).empty()) {
                EXPECT_EQ(link_text(index).substr(0, expected[i].size()), expected[i]);
                ++texts;
            }
        }
    }
    EXPECT_EQ(texts, 17U);
    EXPECT_GT(covered, 20U);
}

} // namespace

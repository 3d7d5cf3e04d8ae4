// Presentations whose objects, directories or user edits lie inside other objects: what would
// damage the outer one, or the directory, is refused; the rest is rewritten without harm.
#include "plugin/status.h"
#include "reader/persist_directory.h"
#include "rewriter/persist_writer.h"
#include "tests/rewriter/relink_fixture.h"

namespace {

using namespace rewriter_test;
using plugin_test::error_params;

const std::string kLonger = "D:\\archive\\of\\longer\\names.doc";

class NestedObjects : public RelinkTest {
  protected:
    // The status of a rewrite in which every link gets a longer path.
    std::int32_t relink_all() {
        EXPECT_EQ(load(deck_), 0);
        for (std::int32_t index = 0; index < n_getLinkCount(); ++index) {
            EXPECT_EQ(j_setLinkFileName(index, kLonger.c_str(), 0), 0);
        }
        return rewrite("out.ppt");
    }

    // In the persist directory an object stands elsewhere from now on.
    static void move_object(Bytes& stream, std::size_t directory, std::size_t from,
                            std::size_t to) {
        const RecordAt record = record_at(stream, directory);
        for (std::size_t at = record.body(); at < record.end(); at += 4) {
            if (bytes::load_u32(stream, at) == from) {
                bytes::store_u32(stream, at, static_cast<std::uint32_t>(to));
                return;
            }
        }
        FAIL() << "no object at " << from;
    }

    static std::size_t child_of_type(const Bytes& stream, std::size_t parent, std::uint16_t type) {
        for (const RecordAt& child : children_of(stream, record_at(stream, parent))) {
            if (child.type == type) {
                return child.offset;
            }
        }
        ADD_FAILURE() << "no child of type " << type;
        return 0;
    }

    // In the file's directory.
    void claim_document_size(const std::string& name, std::uint64_t size) const {
        constexpr std::size_t kSizeInEntry = 120;
        std::string entry_name;
        for (const char letter : std::string("PowerPoint Document")) {
            entry_name += {letter, '\0'};
        }
        const std::string before = bytes_of(name);
        Bytes file(before.begin(), before.end());
        const std::size_t entry = before.find(entry_name);
        ASSERT_NE(entry, std::string::npos);
        bytes::store_u32(file, entry + kSizeInEntry, static_cast<std::uint32_t>(size));
        bytes::store_u32(file, entry + kSizeInEntry + 4, static_cast<std::uint32_t>(size >> 32));
        std::ofstream(path(name), std::ios::binary)
            .write(reinterpret_cast<const char*>(file.data()),
                   static_cast<std::streamsize>(file.size()));
    }

    Deck deck_;
};

TEST_F(NestedObjects, ASlideInsideAnotherIsNotMadeLonger) {
    Page inner(PageKind::slide, 99, 300, 5);
    inner.shape(Shape().picture(u"C:\\in.wmf"));
    auto& outer = deck_.add_slide();
    outer.record(inner.records());
    auto& listed = deck_.add_slide();
    listed.shape(Shape().picture(u"C:\\in.wmf"));
    Bytes stream = deck_.document_stream();
    move_object(stream, deck_.offset_of_persist_directory(0), deck_.offset_of(listed),
                child_of_type(stream, deck_.offset_of(outer), record_type::kSlide));
    deck_.replace_document_stream(stream);
    EXPECT_EQ(relink_all(), ppt::status::kDamaged);
}

TEST_F(NestedObjects, AnOldDirectoryInsideASlideIsNotLost) {
    deck_.add_slide();
    deck_.save();
    const Bytes saved = deck_.document_stream();
    const RecordAt old = record_at(saved, deck_.offset_of_persist_directory(0));
    auto& second = deck_.add_slide();
    second.record_before_drawing({saved.begin() + static_cast<std::ptrdiff_t>(old.offset),
                                  saved.begin() + static_cast<std::ptrdiff_t>(old.end())});
    second.shape(Shape().picture(u"C:\\in.wmf"));
    deck_.touch_document();
    deck_.save();
    constexpr std::size_t kDirectoryOffset = 8 + 12; // in a user edit
    Bytes stream = deck_.document_stream();
    bytes::store_u32(
        stream, deck_.offset_of_user_edit(0) + kDirectoryOffset,
        static_cast<std::uint32_t>(child_of_type(stream, deck_.offset_of(second), old.type)));
    deck_.replace_document_stream(stream);
    EXPECT_EQ(relink_all(), ppt::status::kDamaged);
}

// Its end is not where the new directory may go.
TEST_F(NestedObjects, ASlideThatReachesOverTheDirectoryStaysWhole) {
    deck_.add_slide().shape(Shape().link(deck_.hyperlink(u"C:\\a.doc")));
    auto& long_one = deck_.add_slide();
    auto& inside = deck_.add_slide();
    deck_.save();
    long_one.touch();
    inside.touch();
    deck_.save();
    Bytes stream = deck_.document_stream();
    const RecordAt start = record_at(stream, deck_.offset_of(long_one));
    const RecordAt edit = record_at(stream, deck_.offset_of_user_edit(1));
    bytes::store_u32(stream, start.offset + 4,
                     static_cast<std::uint32_t>(edit.end() - start.body()));
    deck_.replace_document_stream(stream);
    EXPECT_EQ(relink_all(), 0);
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_EQ(link_path(0), kLonger);
}

// An entry's first id has 20 bits.
TEST(NewPersistDirectory, IdsAboveTheHighestFirstIdFollowIt) {
    using Words = std::vector<std::uint32_t>;
    constexpr std::uint32_t kHighest = 0xFFFFF;
    ppt::PersistDirectory directory;
    directory.append_block(
        {(2u << 20) + 1, 10, 20, (1u << 20) + kHighest - 1, 30, (3u << 20) + kHighest, 40, 50, 60});
    directory.v_buildObjectArray();
    const bytes::Bytes body = ppt::n_buildPersistDirectory(directory, 100);
    Words words;
    for (std::size_t at = 0; at < body.size(); at += 4) {
        words.push_back(bytes::load_u32(body, at));
    }
    EXPECT_EQ(words, (Words{(2u << 20) + 1, 10, 20, (1u << 20) + kHighest - 1, 30,
                            (3u << 20) + kHighest, 40, 50, 60}));
}

TEST_F(NestedObjects, AStreamThatClaimsMoreThanItHoldsIsNotRewritten) {
#if defined(_WIN32)
    GTEST_SKIP() << "the system decides what such a stream holds";
#endif
    deck_.version(compound_file::Version::v4);
    auto& slide = deck_.add_slide().shape(Shape().link(deck_.hyperlink(u"C:\\a.doc")));
    for (int i = 0; i < 100; ++i) { // too large for the mini stream
        slide.shape(Shape().picture(u"C:\\map.wmf"));
    }
    deck_.write(path("claims.ppt"));
    claim_document_size("claims.ppt", (std::uint64_t{1} << 32) + 8000);
    ASSERT_EQ(load_again("claims.ppt"), 0);
    ASSERT_EQ(j_setLinkFileName(0, kLonger.c_str(), 0), 0);
    EXPECT_EQ(rewrite("out.ppt"), ppt::status::kDamaged);
}

// The load leaves it out, and it does not become an object at the start of the stream.
TEST_F(NestedObjects, APageThatIsListedNowhereStaysSo) {
    start("hetk");
    deck_.add_slide().shape(Shape().link(deck_.hyperlink(u"C:\\a.doc")));
    deck_.skip_persist_ids(1);
    deck_.add_slide();
    deck_.list_record(PageKind::slide, slide_persist_atom({3, 300, 0}));
    ASSERT_EQ(load(deck_), 0);
    const std::string unread = error_params();
    ASSERT_EQ(unread.substr(0, 1), "1") << unread;
    const id64 own{{77, 0}};
    ASSERT_EQ(j_setTargetFileId(0, &own), 0);
    ASSERT_EQ(rewrite("out.ppt"), 0);
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_EQ(error_params(), unread);
}

} // namespace

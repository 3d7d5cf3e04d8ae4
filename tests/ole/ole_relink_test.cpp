// Linked OLE objects given new sources through the exported functions: the copy is the loaded
// presentation with the OLE streams changed and nothing else.
#include "platform/posix/settings.h"
#include "tests/pptlinks/code_page_guard.h"
#include "tests/rewriter/relink_fixture.h"
#include "tests/support/drive_folder.h"
#include "tests/support/ole_storage.h"

#include <random>

namespace {

using namespace rewriter_test;
using plugin_test::error_params;

const Bytes kAbsolute = file_moniker({"C:\\old\\book.xls"});
const Bytes kItem = item_moniker("Sheet1!R1C1");
const Bytes kRelative = composite_moniker({file_moniker({"book.xls", {}, 1}), kItem});

class OleRelinkTest : public RelinkTest {
  protected:
    void SetUp() override {
        RelinkTest::SetUp();
        remove_folder(folder_);
        folder_ = make_drive_folder("ole-relink");
        std::filesystem::create_directories(folder_ / "new");
        std::ofstream(folder_ / "new/book.xls") << "x";
        deck_.add_slide();
        // With a list of hyperlinks, or its absence would be what the error parameters tell.
        deck_.properties(PropertyStream().blob(u"_PID_HLINKS", hyperlink_list({})).build());
    }

    void TearDown() override {
        platform::trust_link_targets(false);
        RelinkTest::TearDown();
    }

    // Two objects and a picture, two uses of the second object.
    void describe(Deck& deck, const std::array<Bytes, 2>& records, std::u16string_view picture) {
        const auto first = deck.ole_link(records[0]);
        const auto second = deck.ole_link(records[1]);
        deck.add_slide().shape(Shape().object(first)).shape(Shape().picture(picture));
        deck.add_slide().shape(Shape().object(second)).shape(Shape().object(second));
    }

    // The records of the storages in a presentation that was written.
    std::vector<Bytes> storage_records(const std::string& name) const {
        const Bytes stream = plugin_test::StoredFile(path(name)).document();
        std::vector<Bytes> records;
        for (std::size_t at = 0; at < stream.size(); at = record_at(stream, at).end()) {
            const RecordAt record = record_at(stream, at);
            if (record.type == record_type::kExternalOleObjectStg) {
                records.emplace_back(stream.begin() + static_cast<std::ptrdiff_t>(record.offset),
                                     stream.begin() + static_cast<std::ptrdiff_t>(record.end()));
            }
        }
        return records;
    }

    // The record, whose object was `before`, now links to `absolute` and is otherwise the same.
    static void expect_source(const Bytes& record, OleStream before, const Bytes& absolute,
                              bool compressed) {
        const Bytes image = image_in_record(record);
        const Bytes old_image = ole_storage(linked_object(before));
        before.relative.clear();
        before.absolute = absolute;
        EXPECT_EQ(streams_of(image), linked_object(before));
#if !defined(_WIN32) // Wine's own storages keep half of the root's time when they grow
        EXPECT_EQ(entries_of(image), entries_of(old_image));
#endif
        EXPECT_EQ(record_at(record, 0).instance, compressed ? 1 : 0);
    }

    // A deck with one object, loaded.
    void load_one(const OleStream& stream) {
        const auto object =
            deck_.ole_link(storage_record(ole_storage(linked_object(stream)), true));
        deck_.add_slide().shape(Shape().object(object)).shape(Shape().object(object));
        ASSERT_EQ(load(deck_), 0);
    }

    void expect_unchanged() {
        const plugin_test::StoredFile copy(path("out.ppt"));
        EXPECT_EQ(difference(copy.document(), deck_.document_stream()), "");
    }

    Deck deck_;
};

TEST_F(OleRelinkTest, NewSourcesGoIntoTheStoragesAndNothingElseChanges) {
    const OleStream with_relative{kRelative, composite_moniker({kAbsolute, kItem}), 0x1001};
    const OleStream absolute_only{{}, kAbsolute, 1, false};
    Deck before;
    describe(before,
             {storage_record(ole_storage(linked_object(with_relative)), true),
              storage_record(ole_storage(linked_object(absolute_only)), false)},
             u"C:\\a.wmf");
    ASSERT_EQ(load(before), 0);
    ASSERT_EQ(link_paths(), (std::vector<std::string>{path("book.xls!Sheet1!R1C1"), "C:\\a.wmf",
                                                      "C:\\old\\book.xls", "C:\\old\\book.xls"}));
    relink_loaded({{0, u"Q:\\new\\book.xls!Sheet1!R1C1"},
                   {1, u"C:\\longer name.wmf"},
                   {2, u"\\\\srv\\pub\\new\\book.xls"},
                   {3, u"\\\\srv\\pub\\new\\book.xls"}});
    EXPECT_EQ(not_written(), Indexes{});

    const std::vector<Bytes> records = storage_records("out.ppt");
    ASSERT_EQ(records.size(), 2);
    Bytes on_server = file_moniker({"\\\\srv\\pub\\new\\book.xls"});
    bytes::store_u16(on_server, on_server.size() - 28, 5); // length of the server's name
    expect_source(records[0], with_relative,
                  composite_moniker({file_moniker({"Q:\\new\\book.xls"}), kItem}), true);
    expect_source(records[1], absolute_only, on_server, false);
    Deck after;
    describe(after, {records[0], records[1]}, u"C:\\longer name.wmf");
    EXPECT_EQ(
        difference(plugin_test::StoredFile(path("out.ppt")).document(), after.document_stream()),
        "");

    // The copy can be read and rewritten like any other.
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_EQ(link_path(0), "Q:\\new\\book.xls!Sheet1!R1C1");
    EXPECT_EQ(link_path(3), "\\\\srv\\pub\\new\\book.xls");
    ASSERT_EQ(j_setLinkFileName(0, "\\\\srv\\pub\\new\\book.xls!other", 0), 0);
    ASSERT_EQ(rewrite("again.ppt"), 0);
    expect_source(storage_records("again.ppt")[0], with_relative,
                  composite_moniker({on_server, item_moniker("other")}), true);
    EXPECT_EQ(storage_records("again.ppt")[1], records[1]);
}

TEST_F(OleRelinkTest, SourceThatIsNotFoundLeavesTheObjectAndIsReported) {
    const auto web = deck_.hyperlink(u"http://example.org/");
    deck_.add_slide().shape(Shape().link(web));
    load_one({kRelative, kAbsolute});
    ASSERT_EQ(n_getLinkCount(), 3);
    relink_loaded({{0, u"http://example.com/"}, {2, u"Q:\\gone\\book.xls"}});
    EXPECT_EQ(error_params(), path("book.xls!Sheet1!R1C1") + "|Q:\\gone\\book.xls");
    EXPECT_EQ(not_written(), Indexes{2});
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_EQ(link_path(0), "http://example.com/");
    EXPECT_EQ(link_path(1), path("book.xls!Sheet1!R1C1"));

    platform::trust_link_targets(true);
    ASSERT_EQ(load_again("deck.ppt"), 0);
    relink_loaded({{2, u"Q:\\gone\\book.xls"}});
    EXPECT_EQ(not_written(), Indexes{});
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_EQ(link_path(1), "Q:\\gone\\book.xls");
}

TEST_F(OleRelinkTest, RelativePathsAreNotGivenToObjects) {
    platform::trust_link_targets(true);
    load_one({{}, kAbsolute});
    ASSERT_NE(j_setLinkFileName(99, "x", 0), 0);
    const std::string params = error_params();
    relink_loaded({{0, u"reports\\q1.xls"}, {1, u"reports\\q1.xls"}});
    EXPECT_EQ(error_params(), params);
    EXPECT_EQ(not_written(), (Indexes{0, 1}));
    expect_unchanged();
}

TEST_F(OleRelinkTest, PathsThatObjectsRefuseLeaveThem) {
    platform::trust_link_targets(true);
    load_one({{}, kAbsolute});
    const std::u16string long_name(300, u'n');
    for (const std::u16string& refused : {u"C:\\" + long_name, std::u16string(u"C:\\b.xls!")}) {
        ASSERT_EQ(load_again("deck.ppt"), 0);
        relink_loaded({{0, refused}});
        EXPECT_EQ(error_params(), "C:\\old\\book.xls|" + narrow(refused));
        EXPECT_EQ(not_written(), Indexes{0});
        expect_unchanged();
    }
    // Its path can be read, but OLE does not take the rest of the stream.
    OleStream damaged{kRelative, kAbsolute};
    Bytes stream = ole_stream(damaged);
    stream[0] = 9;
    Deck other;
    const auto object =
        other.ole_link(storage_record(ole_storage({{kOleStreamName, stream}}), true));
    other.add_slide().shape(Shape().object(object));
    ASSERT_EQ(load(other), 0);
    relink_loaded({{0, u"C:\\b.xls"}});
    EXPECT_EQ(not_written(), Indexes{0});
    EXPECT_EQ(plugin_test::StoredFile(path("out.ppt")).document(), other.document_stream());
}

TEST_F(OleRelinkTest, TheChangedUseOfAnObjectCounts) {
    platform::trust_link_targets(true);
    load_one({{}, kAbsolute});
    relink_loaded({{1, u"C:\\second.xls"}});
    EXPECT_EQ(not_written(), Indexes{});
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_EQ(link_paths(), std::vector<std::string>(2, "C:\\second.xls"));

    ASSERT_EQ(load_again("deck.ppt"), 0);
    relink_loaded({{0, u"C:\\first.xls"}, {1, u"C:\\second.xls"}});
    EXPECT_EQ(not_written(), Indexes{1}) << "an object has one source";
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_EQ(link_path(0), "C:\\first.xls");
}

TEST_F(OleRelinkTest, TheChangedUseCountsBesideIdsOnThePages) {
    platform::trust_link_targets(true);
    deck_.add_slide().shape(Shape().picture(u"C:\\a.wmf")).tag(u"OBRIN-LINK-NUM=10", u"11");
    load_one({{}, kAbsolute});
    ASSERT_EQ(n_getLinkCount(), 3);
    relink_loaded({{2, u"C:\\second.xls"}});
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_EQ(link_path(2), "C:\\second.xls");
    EXPECT_EQ(link_id(0), 11);
}

TEST_F(OleRelinkTest, LinksAreLeftAloneWhenTheyAreNotAskedFor) {
    platform::trust_link_targets(true);
    load_one({{}, kAbsolute});
    ASSERT_EQ(j_setLinkFileName(0, "C:\\new.xls", 0), 0);
    ASSERT_EQ(rewrite("out.ppt", 2), 0);
    EXPECT_EQ(not_written(), Indexes{});
    expect_unchanged();
}

// A plain storage has no spare room; the path lies outside most code pages.
TEST_F(OleRelinkTest, StorageGrowsWithALongSource) {
    const CodePageGuard utf8(CP_UTF8);
    platform::trust_link_targets(true);
    const Bytes image = ole_storage(linked_object({{}, kAbsolute}));
    const auto object = deck_.ole_link(storage_record(image, false));
    deck_.add_slide().shape(Shape().object(object));
    ASSERT_EQ(load(deck_), 0);
    const std::u16string source =
        u"C:\\" + std::u16string(120, u'\u0416') + u"\\" + std::u16string(120, u'\u00E9') + u".xls";
    relink_loaded({{0, source}});
    EXPECT_EQ(not_written(), Indexes{});
    const Bytes record = storage_records("out.ppt")[0];
    EXPECT_GT(record.size(), image.size() + 8);
    expect_source(record, {{}, kAbsolute}, file_moniker({ansi(source), source}), false);
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_EQ(link_path(0), ansi(source));
}

// Whatever is damaged, an object that is reported as written has its new source.
TEST_F(OleRelinkTest, DamagedStoragesAreLeftOrReallyRetargeted) {
    platform::trust_link_targets(true);
    const Bytes record = storage_record(ole_storage(linked_object({kRelative, kAbsolute})), false);
    deck_.add_slide().shape(Shape().object(deck_.ole_link(record)));
    const Bytes stream = deck_.document_stream();
    const auto found = std::search(stream.begin(), stream.end(), record.begin(), record.end());
    const auto first = static_cast<std::size_t>(found - stream.begin()) + 8;
    std::mt19937 random(7);
    int retargeted = 0;
    for (int round = 0; round < 120; ++round) {
        Bytes damaged = stream;
        for (int i = 0; i < 3; ++i) {
            damaged[first + random() % (record.size() - 8)] = static_cast<std::uint8_t>(random());
        }
        j_unLoadFile();
        if (load(deck_.replace_document_stream(damaged)) != 0) {
            continue;
        }
        relink_loaded({{0, u"C:\\new.xls"}});
        if (not_written().empty()) {
            ++retargeted;
            ASSERT_EQ(load_again("out.ppt"), 0) << round << ' ' << error_params();
            EXPECT_EQ(link_path(0), "C:\\new.xls") << round;
        }
    }
    EXPECT_GT(retargeted, 30);
}

} // namespace

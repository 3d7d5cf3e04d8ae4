// Linked OLE objects in whole presentations: what the host sees of them, and what damaged storages
// end in.
#include "plugin/status.h"
#include "reader/record_types.h"
#include "tests/plugin/plugin_fixture.h"
#include "tests/support/ole_storage.h"

#include <zlib.h>

#include <algorithm>
#include <chrono>

namespace {

using namespace presentation_builder;
namespace status = ppt::status;
using Paths = std::vector<std::string>;

const Bytes kAbsolute = file_moniker({"C:\\far\\book.xls"});

Bytes image_of(const OleStream& stream) {
    return ole_storage(linked_object(stream));
}

Bytes record_of(const OleStream& stream, bool compressed = true) {
    return storage_record(image_of(stream), compressed);
}

class OleLoadTest : public plugin_test::PluginTest {
  protected:
    // A deck with a slide that shows the objects, in order.
    static Deck deck_with(std::vector<Bytes> records) {
        Deck deck;
        std::vector<std::uint32_t> ids;
        for (Bytes& record : records) {
            ids.push_back(deck.ole_link(std::move(record)));
        }
        Page& slide = deck.add_slide();
        for (const std::uint32_t id : ids) {
            slide.shape(Shape().object(id));
        }
        return deck;
    }

    std::int32_t status_with(Bytes record) {
        j_unLoadFile();
        Deck deck = deck_with({std::move(record)});
        return load(deck);
    }
};

TEST_F(OleLoadTest, PathsAreAbsolute) {
    const Bytes here = file_moniker({"book.xls", {}, 1});
    const Bytes item = item_moniker("Sheet1!R1C1:R3C3");
    const Bytes on_root = file_moniker({"\\data\\book.xls", {}, 1});
    Deck deck = deck_with({record_of({{}, kAbsolute}), record_of({here, kAbsolute}, false),
                           record_of({composite_moniker({here, item}), kAbsolute}),
                           record_of({on_root, kAbsolute}, false),
                           record_of({file_moniker({"D:\\x.xls", {}, 1}), kAbsolute})});
    ASSERT_EQ(load(deck), 0) << plugin_test::error_params();
    const std::string drive = folder_.root_name().string(); // that of the presentation, if any
    EXPECT_EQ(link_paths(),
              (Paths{"C:\\far\\book.xls", path("book.xls"), path("book.xls!Sheet1!R1C1:R3C3"),
                     drive + "\\data\\book.xls", "D:\\x.xls"}));
    const ppt::LinkRecord& first = link(1);
    EXPECT_EQ(first.record_type, ppt::RT_ExternalOleLink);
    EXPECT_EQ(first.external_object_id, 2);
    EXPECT_EQ(first.object_list_ordinal, 2); // the list's own atom is its first child
    EXPECT_EQ(first.holder_persist_id, 3);   // the second persist object behind the document
}

TEST_F(OleLoadTest, OneObjectCanBeShownInSeveralPlaces) {
    Deck deck = deck_with({record_of({{}, kAbsolute})});
    deck.add_slide().shape(Shape().object(1)).shape(Shape().object(1));
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(link_paths(), Paths(3, "C:\\far\\book.xls"));
    EXPECT_EQ(link(2).slide_index, 1);
}

TEST_F(OleLoadTest, EmbeddedObjectsAndControlsAreNoLinks) {
    constexpr std::uint16_t kControlAtom = 0x0FFB;
    constexpr std::uint32_t kNoSuchId = 999;
    Deck deck;
    for (const std::uint32_t type : {0U, 2U, 7U}) {
        const Bytes object = ole_object_atom(type, deck.next_object_id(), kNoSuchId);
        deck.external_object(container(0, record_type::kExternalOleLink, {object}));
        deck.external_object(container(
            0, record_type::kExternalOleControl,
            {atom(0, kControlAtom, Bytes(4)), object, container(0, 0x0FC1, {cstring(0, u"x")})}));
    }
    const auto web = deck.hyperlink(u"http://example.org/");
    deck.add_slide().shape(Shape().link(web)).shape(Shape().object(1));
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(link_paths(), Paths{"http://example.org/"});
}

TEST_F(OleLoadTest, DamagedStoragesEndInAStatus) {
    const Bytes image = image_of({{}, kAbsolute});
    const Bytes packed = storage_record(image, true);
    const auto size = static_cast<std::uint32_t>(image.size());
    Bytes other_header = packed;
    other_header[13] = 0xDA;
    Bytes cut_off(packed.begin() + 8, packed.end() - 40);
    Bytes damaged = packed;
    damaged[packed.size() / 2] ^= 0xFF;
    const Bytes embedded = ole_storage(linked_object({{}, {}, 0}));
    const std::uint16_t type = record_type::kExternalOleObjectStg;
    const std::pair<Bytes, std::int32_t> cases[] = {
        {packed, status::kSuccess},
        {storage_record_claiming(image, size + 1), status::kSuccess},
        {storage_record_claiming(image, 0xFFFFFFFF), status::kSuccess},
        {storage_record_claiming(image, size - 1), status::kBadDecompression},
        {storage_record_claiming(image, 0), status::kBadDecompression},
        {atom(1, type, cut_off), status::kBadDecompression},
        {damaged, status::kBadDecompression},
        {other_header, status::kDamaged},
        {atom(1, type, Bytes(5)), status::kDamaged},
        {atom(1, type, {}), status::kDamaged},
        {atom(0, 0x1012, image), status::kDamaged},
        {container(0, type, {image}), status::kStorageOnMemoryFailed},
        {atom(0, type, {}), status::kStorageOnMemoryFailed},
        {atom(0, type, Bytes(2000, 0x41)), status::kStorageOnMemoryFailed},
        {storage_record(Bytes(2000), true), status::kStorageOnMemoryFailed},
        {storage_record(ole_storage({{u"Other", Bytes(9)}}), true), status::kElementMissing},
        {storage_record(ole_storage({{kOleStreamName, Bytes(22)}}), false), status::kShortRead},
        {storage_record(embedded, true), status::kDamaged},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        EXPECT_EQ(status_with(cases[i].first), cases[i].second) << "case " << i;
    }
    ASSERT_EQ(status_with(storage_record_claiming(image, size - 1)), status::kBadDecompression);
    EXPECT_EQ(plugin_test::error_params(), path("deck.ppt") + "|" + std::to_string(Z_BUF_ERROR));
}

TEST_F(OleLoadTest, PersistIdsMustLeadToAStorage) {
    Deck unknown;
    unknown.external_object(external_ole_link(unknown.next_object_id(), 77));
    EXPECT_EQ(load(unknown), status::kSeekFromStartFailed);
    Deck unlisted;
    unlisted.skip_persist_ids(1); // id 2 has no object; the document stands at offset 0
    unlisted.external_object(external_ole_link(unlisted.next_object_id(), 2));
    unlisted.add_slide();
    EXPECT_EQ(load(unlisted), status::kDamaged);
    Deck short_atom;
    short_atom.external_object(
        container(0, record_type::kExternalOleLink,
                  {atom(0, record_type::kExternalOleObjectAtom, Bytes{0, 0, 0, 0, 1, 0, 0, 0})}));
    EXPECT_EQ(load(short_atom), status::kDamaged);
}

// Data that expands a thousandfold is expanded once, whatever it says and however often it is
// named.
TEST_F(OleLoadTest, WorkAndMemoryFollowTheFile) {
    Bytes image = image_of({{}, kAbsolute});
    image.resize(16 << 20);
    Deck deck;
    const auto persist_id = deck.persist_object(storage_record_claiming(image, 0xFFFFFFF0));
    constexpr int kEntries = 2000;
    for (int i = 0; i < kEntries; ++i) {
        deck.external_object(external_ole_link(deck.next_object_id(), persist_id));
    }
    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(ppt::state().links.external_objects().size(), kEntries);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

// Storages inside one another would make the walk read the same bytes once for each of them.
TEST_F(OleLoadTest, StoragesTogetherAreNotLargerThanTheStream) {
    constexpr std::uint32_t kDepth = 8;
    const Bytes image = image_of({{}, kAbsolute});
    Bytes nested = storage_record(image, false);
    for (std::uint32_t i = 1; i < kDepth; ++i) {
        nested = storage_record(join({image, nested}), false);
    }
    const auto load_with_padding = [&](std::size_t padding) {
        j_unLoadFile();
        Deck deck;
        deck.persist_object(nested);
        const Bytes& stream = deck.document_stream();
        const auto found = std::search(stream.begin(), stream.end(), nested.begin(), nested.end());
        auto offset = static_cast<std::uint32_t>(found - stream.begin());
        for (std::uint32_t i = 0; i < kDepth; ++i) {
            deck.directory_entry({10 + i, offset});
            deck.external_object(external_ole_link(deck.next_object_id(), 10 + i));
            offset += 8 + static_cast<std::uint32_t>(image.size());
        }
        return load(deck.loose_bytes(Bytes(padding)));
    };
    EXPECT_EQ(load_with_padding(0), status::kDamaged);
    EXPECT_EQ(load_with_padding(kDepth * nested.size()), 0);
}

} // namespace

// The OLE stream and its monikers as bytes: what is not changed stays, what is changed is what
// Windows would have written.
#include "platform/base/error.h"
#include "platform/ole_link/link_stream.h"
#include "platform/ole_link/moniker.h"
#include "tests/support/ole_storage.h"

#include <gtest/gtest.h>

namespace {

using namespace presentation_builder;
using ole_link::LinkStream;
using ole_link::Moniker;
using ole_link::parse_moniker;

const Bytes kFile = file_moniker({"C:\\data\\book.xls"});
const Bytes kWideFile = file_moniker({"C:\\?.xls", u"C:\\\u0416.xls"});
const Bytes kItem = item_moniker("Sheet1!R1C1:R3C3");
const Bytes kFolderFile = file_moniker({"book.xls", u"book.xls", 1});

std::vector<OleStream> streams() {
    const Bytes range = composite_moniker({kFile, kItem});
    return {
        {{}, kFile},
        {kFolderFile, kFile},
        {composite_moniker({kFolderFile, kItem}), range},
        {{}, composite_moniker({kWideFile, kItem, item_moniker("?", u"\u0416")})},
        {unknown_moniker(), unknown_moniker()},
        {{}, composite_moniker({kFile, unknown_moniker(), kItem})},
        {{}, range, 0x1001},
        {{}, range, 1, true, Bytes{}}, // ends behind the monikers
        {kFolderFile, {}, 1},
    };
}

TEST(LinkStream, SerialisesToTheBytesThatItWasReadFrom) {
    for (OleStream stream : streams()) {
        for (const bool counts : {true, false}) {
            stream.sizes_count_themselves = counts;
            const Bytes data = ole_stream(stream);
            const LinkStream parsed = LinkStream::parse(data);
            EXPECT_TRUE(parsed.is_link());
            EXPECT_EQ(Bytes(parsed.relative_source().begin(), parsed.relative_source().end()),
                      stream.relative);
            EXPECT_EQ(Bytes(parsed.absolute_source().begin(), parsed.absolute_source().end()),
                      stream.absolute);
            EXPECT_EQ(parsed.serialise(), data);
        }
    }
    const Bytes embedded = ole_stream({{}, {}, 8});
    EXPECT_FALSE(LinkStream::parse(embedded).is_link());
    EXPECT_EQ(LinkStream::parse(embedded).serialise(), embedded);
}

// The size convention and everything that the source does not concern stay.
TEST(LinkStream, TakesANewSourceInPlaceOfBothOldOnes) {
    for (const bool counts : {true, false}) {
        OleStream stream{kFolderFile, kFile, 0x1001, counts};
        LinkStream parsed = LinkStream::parse(ole_stream(stream));
        parsed.set_absolute_source(kWideFile);
        stream.relative.clear();
        stream.absolute = kWideFile;
        EXPECT_EQ(parsed.serialise(), ole_stream(stream));
    }
}

TEST(LinkStream, KeepsASizeThatCountsOnlyItself) {
    Bytes data = ole_stream({{}, kFile});
    bytes::store_u32(data, 20, 4); // of the relative moniker, which is not there
    EXPECT_EQ(LinkStream::parse(data).serialise(), data);
}

TEST(LinkStream, RefusesASourceThatWouldBeReadOtherwise) {
    const OleStream stream{{}, kFile, 1, false, Bytes{}};
    LinkStream parsed = LinkStream::parse(ole_stream(stream));
    // Its last four bytes look like the class that stands behind monikers.
    const Bytes source = file_moniker({"C:\\?", u"C:\\\uFFFF\uFFFF"});
    EXPECT_THROW(parsed.set_absolute_source(source), platform::Error);
    EXPECT_EQ(parsed.serialise(), ole_stream(stream));
}

TEST(LinkStream, CutOffAnywhereIsRefusedOrKept) {
    for (const OleStream& stream : streams()) {
        const Bytes whole = ole_stream(stream);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const View cut = View(whole).first(size);
            try {
                EXPECT_EQ(LinkStream::parse(cut).serialise(), Bytes(cut.begin(), cut.end()));
            } catch (const platform::Error& error) {
                EXPECT_EQ(error.code(), platform::Errc::corrupt);
            }
        }
        for (const View moniker : {View(stream.relative), View(stream.absolute)}) {
            for (std::size_t size = 0; size < moniker.size(); ++size) {
                parse_moniker(moniker.first(size)); // must not read outside
            }
        }
    }
    Bytes other_version = ole_stream({{}, kFile});
    other_version[0] = 2;
    EXPECT_THROW(LinkStream::parse(other_version), platform::Error);
}

TEST(Moniker, FileAndItemsAreUnderstoodInBothForms) {
    const auto file = parse_moniker(kFile);
    ASSERT_TRUE(file && file->file);
    EXPECT_EQ(file->file->ansi, "C:\\data\\book.xls");
    EXPECT_FALSE(file->file->wide);
    const auto range =
        parse_moniker(composite_moniker({kWideFile, kItem, item_moniker("?", u"\u0416")}));
    ASSERT_TRUE(range && range->file && range->items.size() == 2);
    EXPECT_EQ(range->file->wide, u"C:\\\u0416.xls");
    EXPECT_EQ(range->items[0].delimiter.ansi, "!");
    EXPECT_EQ(range->items[0].name.ansi, "Sheet1!R1C1:R3C3");
    EXPECT_EQ(range->items[1].name.wide, u"\u0416");
    const auto item = parse_moniker(kItem);
    ASSERT_TRUE(item && !item->file && item->items.size() == 1);
}

TEST(Moniker, WhatIsUnknownOrDamagedIsNotGuessedAt) {
    EXPECT_FALSE(parse_moniker({}));
    EXPECT_FALSE(parse_moniker(unknown_moniker()));
    EXPECT_FALSE(parse_moniker(composite_moniker({unknown_moniker(), kFile})));
    Bytes more_promised = composite_moniker({kFile, kItem});
    bytes::store_u32(more_promised, 16, 0xFFFFFFFF);
    EXPECT_FALSE(parse_moniker(more_promised));
    // More parts than there can be, the last of them unknown: one more would not be countable.
    Bytes many_unknown = composite_moniker({kFile, unknown_moniker()});
    bytes::store_u32(many_unknown, 16, 0xFFFFFFFF);
    EXPECT_FALSE(parse_moniker(many_unknown));
    Bytes long_path = kFile;
    bytes::store_u32(long_path, 18, 0xFFFFFFFF);
    EXPECT_FALSE(parse_moniker(long_path));
}

// The room that a long path takes is none for parts: with a shorter one they would be missing.
TEST(Moniker, PartsThatAreNotThereAreNotReadOutOfALongPath) {
    constexpr std::size_t kCount = 16;
    const auto fitting = static_cast<std::uint32_t>(unknown_moniker().size() / 16);
    Bytes promised = composite_moniker({kWideFile, unknown_moniker()});
    bytes::store_u32(promised, kCount, 1 + fitting);
    EXPECT_TRUE(parse_moniker(promised));
    bytes::store_u32(promised, kCount, 1 + fitting + 1);
    EXPECT_FALSE(parse_moniker(promised));
}

TEST(Moniker, IsComposedAsWindowsWritesIt) {
    Moniker moniker;
    moniker.file = {"C:\\data\\book.xls"};
    EXPECT_EQ(serialise(moniker), kFile);
    moniker.items = {ole_link::make_item({"!"}, {"Sheet1!R1C1:R3C3"})};
    EXPECT_EQ(serialise(moniker), composite_moniker({kFile, kItem}));
    moniker.items = {ole_link::make_item({"!"}, {"?", u"\u0416"})};
    moniker.file = {"C:\\?.xls", u"C:\\\u0416.xls"};
    EXPECT_EQ(serialise(moniker), composite_moniker({kWideFile, item_moniker("?", u"\u0416")}));

    // On a server the moniker says how long the server's name is.
    moniker.items.clear();
    moniker.file = {"\\\\srv\\pub\\book.xls"};
    Bytes on_server = file_moniker({"\\\\srv\\pub\\book.xls"});
    bytes::store_u16(on_server, 16 + 2 + 4 + 19, 5);
    EXPECT_EQ(serialise(moniker), on_server);
}

TEST(Moniker, KeepsPartsThatItDoesNotKnow) {
    const Bytes stored = composite_moniker({kFile, kItem, unknown_moniker(), kFile});
    EXPECT_EQ(serialise(*parse_moniker(stored)), stored);
    Moniker moved = *parse_moniker(stored);
    moved.file = {"D:\\x.xls"};
    EXPECT_EQ(serialise(moved),
              composite_moniker({file_moniker({"D:\\x.xls"}), kItem, unknown_moniker(), kFile}));
}

} // namespace

// The builder is what other tests stand on: its streams hold together, list what they claim to, and
// its files are read by an independent program.
#include "tests/support/presentation_builder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>

namespace presentation_builder {
namespace {

using namespace record_type;

// Everything that a deck can hold, saved three times.
struct RichDeck {
    Deck deck;
    Page* slide = nullptr;
    Page* notes = nullptr;

    RichDeck() {
        const std::uint32_t web = deck.declare({u"http://example.org/", u"example", u"part"});
        const std::uint32_t song = deck.sound(kExternalMidiAudio, u"C:\\song.mid");
        const std::uint32_t film = deck.movie(kExternalAviMovie, u"C:\\film.avi");
        const std::uint32_t listed = deck.next_object_id();
        deck.external_object(video_list(media(kExternalVideo, listed, u"C:\\a.avi")));
        deck.add_master().name(u"Default").shape(Shape().link(web));
        slide = &deck.add_slide();
        slide->shape(Shape().text(Text(u"see here").link(web, 4, 8)))
            .shape(Shape::group({Shape().object(song), Shape::group({Shape().object(film)})}))
            .shape(Shape().picture(u"C:\\map.wmf").record(atom(0, 0x7777, Bytes(5))))
            .tag(u"NUMBER", u"12")
            .outline(Text(u"list text", 1).as_bytes().link(web, 0, 4));
        deck.skip_persist_ids(3);
        notes = &deck.add_notes();
        deck.behind_document_end(atom(0, 0x7777, Bytes(3))).save();
        slide->record(atom(0, 0x7778, {}));
        deck.loose_bytes(Bytes(10)).save();
        notes->outline(Text(u"more"));
    }
};

TEST(DeckStream, ContainersEndWhereTheirChildrenEnd) {
    RichDeck rich;
    const Bytes& stream = rich.deck.document_stream();
    for (const std::size_t at : {rich.deck.offset_of_document(), rich.deck.offset_of(*rich.slide),
                                 rich.deck.offset_of(*rich.notes)}) {
        EXPECT_EQ(structure_faults(stream, at), std::vector<std::string>{});
    }
    // Two shapes, two groups, a member in each; the outermost group and the background.
    EXPECT_EQ(find_all(stream, rich.deck.offset_of(*rich.slide), kArtShape).size(), 8U);

    Bytes damaged = stream;
    const RecordAt list = rich.deck.find_in_document({{kExternalObjectList}});
    bytes::store_u32(damaged, list.offset + 4, list.length - 8);
    EXPECT_FALSE(structure_faults(damaged, rich.deck.offset_of_document()).empty());
}

TEST(DeckStream, EachSaveListsWhatChanged) {
    RichDeck rich;
    Deck& deck = rich.deck;
    const Bytes& stream = deck.document_stream();
    ASSERT_EQ(deck.edit_count(), 3U);
    // The last edit ends the stream, and the chain leads back to the first.
    EXPECT_EQ(record_at(stream, deck.offset_of_user_edit(2)).end(), stream.size());
    std::uint32_t previous = 0;
    for (std::size_t edit = 0; edit < 3; ++edit) {
        const RecordAt record = record_at(stream, deck.offset_of_user_edit(edit));
        ASSERT_EQ(record.type, kUserEditAtom);
        EXPECT_EQ(bytes::load_u32(stream, record.body() + 8), previous);
        EXPECT_EQ(bytes::load_u32(stream, record.body() + 12),
                  deck.offset_of_persist_directory(edit));
        previous = deck.offset_of_user_edit(edit);
    }
    // First: document, master and slide, then the notes behind a gap. Second: the slide. Third:
    // the document, because its slide list changed.
    const auto words_of = [&](std::size_t edit) {
        const RecordAt directory = record_at(stream, deck.offset_of_persist_directory(edit));
        std::vector<std::uint32_t> words;
        for (std::size_t at = directory.body(); at < directory.end(); at += 4) {
            words.push_back(bytes::load_u32(stream, at));
        }
        return words;
    };
    const std::vector<std::uint32_t> first = words_of(0);
    ASSERT_EQ(first.size(), 6U);
    EXPECT_EQ(first[0], 0x00300001U);
    EXPECT_EQ(first[4], 0x00100000U | rich.notes->persist_id());
    EXPECT_EQ(words_of(1), (std::vector<std::uint32_t>{0x00100003, deck.offset_of(*rich.slide)}));
    EXPECT_EQ(words_of(2), (std::vector<std::uint32_t>{0x00100001, deck.offset_of_document()}));
}

TEST(DeckStream, ListsStandInTheChosenOrder) {
    Deck deck;
    deck.add_slide();
    deck.add_notes();
    deck.list_order({PageKind::notes, PageKind::slide}).document_last();
    EXPECT_EQ(deck.find_in_document({{kSlideListWithText, 0}}).instance, 2);
    EXPECT_EQ(deck.find_in_document({{kSlideListWithText, 1}}).instance, 0);
    EXPECT_GT(deck.offset_of_document(), 0U);
    EXPECT_EQ(record_at(deck.document_stream(), 0).type, kSlide);
}

TEST(PersistDirectory, LongRunsAreSplit) {
    std::vector<PersistEntry> entries;
    for (std::uint32_t id = 1; id <= 5000; ++id) {
        entries.push_back({id, 10 * id});
    }
    const Bytes directory = persist_directory_atom(entries);
    EXPECT_EQ(bytes::load_u32(directory, 8), 0xFFF00001U);
    EXPECT_EQ(bytes::load_u32(directory, 8 + 4 * 4096), (905U << 20) | 4096U);
    EXPECT_EQ(directory.size(), 8 + 4 * (5000 + 2U));
}

// What a command prints.
std::string output_of(const std::string& command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string output;
    std::array<char, 4096> buffer;
    while (const std::size_t count = fread(buffer.data(), 1, buffer.size(), pipe.get())) {
        output.append(buffer.data(), count);
    }
    return output;
}

class DeckFile : public testing::TestWithParam<compound_file::Version> {
  protected:
    void SetUp() override {
        path_ = testing::TempDir() + "deck-" + std::to_string(static_cast<unsigned>(GetParam())) +
                ".ppt";
        rich_.deck.version(GetParam())
            .pictures(100'000)
            .properties(PropertyStream()
                            .blob(u"_PID_HLINKS", hyperlink_list(std::vector<ListedHyperlink>{
                                                      {u"http://example.org/", u"part"}}))
                            .text(u"Name", u"value")
                            .build())
            .stream(u"MBD0001/Contents", Bytes(5000, 7))
            .storage(u"Empty");
    }

    void TearDown() override { std::filesystem::remove(path_); }

    RichDeck rich_;
    std::string path_;
};

TEST_P(DeckFile, AnotherProgramReadsWhatWasWritten) {
    if (output_of("command -v gsf").empty()) {
        GTEST_SKIP() << "gsf (libgsf-bin) is not installed";
    }
    rich_.deck.write(path_);
    const std::string listing = output_of("gsf list '" + path_ + "'");
    for (const char* name : {"PowerPoint Document", "Current User", "Pictures", "MBD0001/Contents",
                             "Empty", "DocumentSummaryInformation"}) {
        EXPECT_NE(listing.find(name), std::string::npos) << name << " in\n" << listing;
    }
    const std::string stream = output_of("gsf cat '" + path_ + "' 'PowerPoint Document'");
    EXPECT_EQ(Bytes(stream.begin(), stream.end()), rich_.deck.document_stream());
    EXPECT_EQ(output_of("gsf cat '" + path_ + "' Pictures").size(), 100'000U);
    EXPECT_NE(output_of("gsf props '" + path_ + "' Name").find("value"), std::string::npos);
}

TEST_P(DeckFile, ImageAndFileAreTheSame) {
    rich_.deck.write(path_);
    std::ifstream file(path_, std::ios::binary);
    const std::string content((std::istreambuf_iterator<char>(file)), {});
    EXPECT_EQ(Bytes(content.begin(), content.end()), rich_.deck.image());
}

INSTANTIATE_TEST_SUITE_P(Versions, DeckFile,
                         testing::Values(compound_file::Version::v3, compound_file::Version::v4));

} // namespace
} // namespace presentation_builder

// Writes presentations for scripts/interop into a folder: every kind of link, in the records that
// another program needs to show the pages.
//
//     make_interop_decks FOLDER
#include "tests/support/ole_storage.h"
#include "tests/support/presentation_builder.h"

#include <cstdio>
#include <exception>

namespace {

using namespace presentation_builder;
using namespace record_type;

constexpr std::uint16_t kFillType = 0x0180;
constexpr std::uint16_t kPictureFlags = 0x0106;
constexpr std::uint32_t kPictureFill = 3;
constexpr std::uint32_t kLinkedNotSaved = 0x0A; // MSOBLIPFLAGS: from a file, not saved with it

// The list of all targets that a presentation keeps in its properties, as readers expect it.
class ListedDeck {
  public:
    std::uint32_t hyperlink(const std::u16string& target) {
        listed_.push_back({target, u""});
        return deck.declare({target, target});
    }

    void write(const std::string& path) {
        // Readers cut a property that is larger than its section less the section's offset, so
        // there is another one in front of it, as in files of the application.
        deck.properties(PropertyStream()
                            .text(u"_PID_GUID", u"{0F5D3A1C-2B4E-4C6D-8E9F-A0B1C2D3E4F5}")
                            .blob(u"_PID_HLINKS", hyperlink_list(listed_))
                            .build());
        deck.write(path);
    }

    Deck deck;

  private:
    std::vector<ListedHyperlink> listed_;
};

// A text with links over its first, a middle and its last words.
Text linked_words(ListedDeck& made, const std::u16string& folder) {
    const std::u16string words = u"first words, middle words, last words";
    return Text(words)
        .link(made.hyperlink(folder + u"/first.html"), 0, 5)
        .link(made.hyperlink(folder + u"/middle.html"), 13, 25)
        .link(made.hyperlink(folder + u"/last.html"), 27, static_cast<std::uint32_t>(words.size()));
}

void write_texts(const std::string& path) {
    ListedDeck made;
    made.deck.add_master();
    made.deck.add_slide().shape(
        Shape().text(linked_words(made, u"http://www.example.org/characters")));
    made.deck.add_slide().shape(
        Shape().text(linked_words(made, u"http://www.example.org/bytes").as_bytes()));
    made.write(path);
}

void write_shapes(const std::string& path) {
    ListedDeck made;
    made.deck.add_master();
    const auto linked = [&](const std::u16string& name, std::u16string text) {
        return Shape().link(made.hyperlink(u"http://www.example.org/" + name)).text(Text(text));
    };
    made.deck.add_slide()
        .shape(linked(u"single", u"alone"))
        .shape(Shape::group({linked(u"outer", u"in a group"),
                             Shape::group({linked(u"inner", u"in a group of the group"),
                                           Shape().text(Text(u"no link"))}),
                             Shape().text(linked_words(made, u"http://www.example.org/grouped"))}));
    made.write(path);
}

void write_older_ids(const std::string& path) {
    ListedDeck made;
    made.deck.add_master();
    const auto page = [&](const std::u16string& name) -> Page& {
        return made.deck.add_slide().shape(
            Shape().text(linked_words(made, u"http://www.example.org/" + name)));
    };
    page(u"one")
        .name(u"Prices MORVANE-LINK-ID=1004")
        .tag(u"OBRIN-LINK-NUM=1", u"1001")
        .tag(u"NUMBER", u"7");
    page(u"two").tag(u"OBRIN-LINK-NUM=1", u"1002").tag(u"OBRIN-LINK-NUM=2", u"1003");
    made.write(path);
}

void write_pictures(const std::string& path) {
    Deck deck;
    deck.add_master();
    const auto picture = [](std::u16string_view name) {
        std::vector<ArtProperty> properties = linked_picture(name);
        properties.push_back({kPictureFlags, kLinkedNotSaved});
        return Shape(kPictureFrame).options(std::move(properties));
    };
    deck.add_slide()
        .shape(picture(u"C:\\Pictures\\map.png"))
        .shape(Shape()
                   .options({{kFillType, kPictureFill},
                             {art_property::kFillBlip, 1},
                             text_property(art_property::kFillBlipName, u"C:\\Fills\\stone.png")})
                   .text(Text(u"filled")))
        .shape(Shape()
                   .options({text_property(art_property::kLineBlipName, u"C:\\Lines\\dots.png"),
                             {art_property::kLineBlipFlags, 1}})
                   .text(Text(u"framed")))
        .shape(Shape::group({picture(u"\\\\server\\share\\logo.png")}));
    deck.write(path);
}

Bytes linked_range(const std::string& book, const std::string& range, bool compressed) {
    OleStream stream;
    stream.absolute =
        composite_moniker({file_moniker({"C:\\Books\\" + book}), item_moniker(range)});
    stream.relative = composite_moniker({file_moniker({book, {}, 1}), item_moniker(range)});
    return storage_record(ole_storage(linked_object(stream)), compressed);
}

void write_objects(const std::string& path) {
    Deck deck;
    deck.add_master();
    const auto shown = [](std::uint32_t object, std::u16string text) {
        return Shape(kPictureFrame).object(object).text(Text(std::move(text)));
    };
    const auto packed = deck.ole_link(linked_range("sales.xls", "Sheet1!R1C1:R9C4", true));
    const auto plain = deck.ole_link(linked_range("costs.xls", "Sheet2!R2C2:R3C3", false));
    deck.add_slide().shape(shown(packed, u"sales")).shape(shown(plain, u"costs"));
    const auto sound = deck.sound(kExternalWavAudioLink, u"C:\\Media\\bell.wav");
    const auto song = deck.sound(kExternalMidiAudio, u"C:\\Media\\song.mid");
    const auto film = deck.movie(kExternalAviMovie, u"C:\\Media\\film.avi");
    deck.add_slide()
        .shape(shown(sound, u"bell"))
        .shape(shown(song, u"song"))
        .shape(shown(film, u"film"));
    deck.write(path);
}

} // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::fprintf(stderr, "Usage: make_interop_decks FOLDER\n");
        return 2;
    }
    try {
        const std::string folder = arguments[1];
        write_texts(folder + "/texts.ppt");
        write_shapes(folder + "/shapes.ppt");
        write_older_ids(folder + "/older-ids.ppt");
        write_pictures(folder + "/pictures.ppt");
        write_objects(folder + "/objects.ppt");
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "make_interop_decks: %s\n", failure.what());
        return 1;
    }
    return 0;
}

// make_plain_deck FILE: writes a presentation with links of several kinds and without document
// properties, which is all that the property sets of Wine can be trusted with.
#include "tests/support/presentation_builder.h"

#include <cstdio>

int main(int argc, char** argv) {
    using namespace presentation_builder;
    if (argc != 2) {
        std::fputs("usage: make_plain_deck FILE\n", stderr);
        return 2;
    }
    Deck deck;
    const auto web = deck.hyperlink(u"http://example.org/");
    const auto film = deck.movie(record_type::kExternalAviMovie, u"C:\\films\\film.avi");
    deck.add_slide()
        .shape(Shape().link(web))
        .shape(Shape().object(film))
        .shape(Shape().picture(u"C:\\maps\\map.wmf"));
    deck.add_slide().shape(Shape().text(Text(u"words of a link").link(web, 0, 5)));
    deck.write(argv[1]);
    return 0;
}

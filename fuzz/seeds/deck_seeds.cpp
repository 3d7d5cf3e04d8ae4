#include "fuzz/seeds/seeds.h"
#include "fuzz/support/deck_input.h"
#include "tests/faults/fault_deck.h"

#include <fstream>

namespace fuzz {

namespace {

using namespace presentation_builder;

// The newest versions of document and slide stand behind the older ones.
Deck saved_twice() {
    Deck deck;
    const std::uint32_t web = deck.hyperlink(u"http://example.org/");
    deck.add_master();
    Page& slide = deck.add_slide();
    slide.shape(Shape().link(web)).outline(Text(u"see there", 1).link(web, 4, 9));
    deck.skip_persist_ids(2).longest_run(1).save();
    slide.shape(Shape().picture(u"C:\\map.wmf"));
    deck.declare({u"C:\\docs\\a.ppt", u"a", u"256,1,Slide 1"});
    return deck;
}

// Links over characters and over bytes, with runs that have to follow them.
Deck texts() {
    Deck deck;
    const std::uint32_t doc = deck.hyperlink(u"C:\\docs\\report.doc");
    const TextRun first{4, 0x1000F, Bytes(4)};
    const TextRun second{30, 0, {}};
    const TextRun runs[] = {first, second};
    const TextRun paragraph[] = {{34, 0x1000, Bytes(2)}};
    Text styled(u"see C:\\docs\\report.doc for details");
    styled.style(text_style(paragraph, runs))
        .link(doc, 4, 22)
        .record(master_text({34}))
        .record(text_field(record_type::kSlideNumberAtom, 30))
        .record(text_bookmark(4, 22));
    deck.add_slide()
        .shape(Shape().text(styled))
        .shape(Shape().text(Text(u"see C:\\docs\\report.doc, C:\\docs\\report.doc")
                                .as_bytes()
                                .link(doc, 4, 22)
                                .link(doc, 24, 42)));
    return deck;
}

} // namespace

void Seeds::add(const std::string& target, const std::string& name, bytes::View input) const {
    const std::filesystem::path folder = folder_ / target;
    std::filesystem::create_directories(folder);
    std::ofstream file;
    file.exceptions(std::ios::failbit | std::ios::badbit);
    file.open(folder / name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(input.data()),
               static_cast<std::streamsize>(input.size()));
}

void add_presentation(const Seeds& seeds, const std::string& name, bytes::View image) {
    seeds.add("compound_raw", name, image);
    for (const char* target : {"load", "rewrite"}) {
        for (std::size_t options = 0; options < kOptionCount; ++options) {
            const std::string with = name + "-" + std::to_string(options);
            seeds.add(target, with + "-file", encode_deck_input(options, DeckForm::file, image));
            seeds.add(target, with + "-streams",
                      encode_deck_input(options, DeckForm::streams, image));
        }
    }
}

void add_deck_seeds(const Seeds& seeds) {
    add_presentation(seeds, "empty", Deck().image());
    add_presentation(seeds, "properties",
                     fault::every_kind_of_link(fault::Ids::as_properties).image());
    add_presentation(seeds, "pages", fault::every_kind_of_link(fault::Ids::on_pages).image());
    add_presentation(seeds, "twice", saved_twice().image());
    add_presentation(seeds, "texts", texts().image());
    add_presentation(seeds, "version-4", texts().version(compound_file::Version::v4).image());
}

} // namespace fuzz

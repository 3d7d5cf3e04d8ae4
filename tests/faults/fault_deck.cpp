#include "tests/faults/fault_deck.h"

#include "hostapi/hostapi.h"
#include "plugin/exports.h"
#include "tests/support/ole_storage.h"

namespace fault {

namespace {

using namespace presentation_builder;

Bytes object_storage(bool compressed) {
    const Bytes source = file_moniker({"C:\\old\\book.xls"});
    return storage_record(ole_storage(linked_object({{}, source})), compressed);
}

Bytes property_stream(bool with_ids) {
    const ListedHyperlink listed[] = {{u"C:\\old\\a.doc"}, {u"C:\\old\\b.doc"}};
    PropertyStream properties;
    properties.text(u"Client", u"somebody");
    if (with_ids) {
        properties.text(u"MORVANE-LINK-ID=31%%", u"c:\\old\\a.doc");
        properties.text(u"MORVANE-LINK-ID=32%%", u"c:\\old\\map.wmf");
        properties.text(u"MORVANE-LINK-ID", u"7");
    }
    return properties.blob(u"_PID_HLINKS", hyperlink_list(listed)).build();
}

} // namespace

Deck every_kind_of_link(Ids ids) {
    Deck deck;
    const std::uint32_t doc = deck.hyperlink(u"C:\\old\\a.doc");
    const std::uint32_t shown = deck.hyperlink(u"C:\\old\\b.doc");
    const std::uint32_t film = deck.movie(record_type::kExternalAviMovie, u"C:\\old\\film.avi");
    const std::uint32_t tune = deck.sound(record_type::kExternalMidiAudio, u"C:\\old\\tune.mid");
    const std::uint32_t noise =
        deck.sound(record_type::kExternalWavAudioLink, u"C:\\old\\noise.wav");
    const std::uint32_t packed = deck.ole_link(object_storage(true));
    const std::uint32_t plain = deck.ole_link(object_storage(false));
    deck.add_master().shape(Shape().link(doc));
    Page& slide = deck.add_slide();
    slide.shape(Shape().link(doc))
        .shape(Shape::group({Shape().object(film), Shape().object(tune)}))
        .shape(Shape().text(Text(u"see C:\\old\\b.doc").link(shown, 4, 16)))
        .shape(Shape().picture(u"C:\\old\\map.wmf"));
    deck.add_slide().shape(Shape().object(packed)).shape(Shape().object(plain));
    deck.add_notes().shape(Shape().object(noise));
    if (ids == Ids::on_pages) {
        slide.tag(u"OBRIN-LINK-NUM=1", u"31").tag(u"OBRIN-LINK-NUM=2", u"32");
        slide.name(u"first MORVANE-LINK-ID=7");
    }
    return deck.properties(property_stream(ids == Ids::as_properties));
}

std::string loaded_links() {
    constexpr std::size_t kBuffer = 1024;
    std::string all;
    for (std::int32_t i = 0; i < n_getLinkCount(); ++i) {
        char text[kBuffer];
        id64 id{};
        j_getLinkFileName(i, 0, text);
        all += text;
        j_getHyperlinkText(i, text);
        all += std::string("|") + text;
        j_getLinkId(i, 0, &id);
        v_id64ToStr(&id, text);
        all += std::string("|") + text + '\n';
    }
    id64 id{};
    char text[kBuffer];
    j_getTargetFileId(0, &id);
    v_id64ToStr(&id, text);
    return all + text + '\n';
}

std::vector<std::string> change_all_links(const std::string& mark) {
    std::vector<std::string> paths;
    for (std::int32_t i = 0; i < n_getLinkCount(); ++i) {
        const std::string tail = i % 2 == 0 ? "b" : std::string(40, 'b');
        paths.push_back("D:\\" + mark + std::to_string(i) + tail);
        j_setLinkFileName(i, paths.back().c_str(), 0);
        const id64 id{{100 + static_cast<std::uint32_t>(i), 0}};
        j_setLinkId(i, 0, &id);
    }
    return paths;
}

} // namespace fault

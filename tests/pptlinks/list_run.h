// A presentation with a link of every kind, to be listed.
#pragma once

#include "tests/pptlinks/program_run.h"

#include <nlohmann/json.hpp>

#include <sstream>

namespace pptlinks {

class ListRun : public ProgramRun {
  protected:
    // A link of every kind that is found, on pages of every kind.
    void write_deck(const std::string& name) {
        using namespace presentation_builder;
        Deck deck;
        const std::uint32_t web = deck.hyperlink(u"http://example.org/\u00E9");
        const std::uint32_t song = deck.sound(record_type::kExternalMidiAudio, u"C:\\song.mid");
        const std::uint32_t wav = deck.sound(record_type::kExternalWavAudioLink, u"C:\\hm.wav");
        const std::uint32_t film = deck.movie(record_type::kExternalAviMovie, u"C:\\film.avi");
        deck.add_master().shape(Shape().link(web));
        deck.add_slide().shape(Shape().object(song)).shape(Shape().object(film));
        deck.add_slide()
            .shape(Shape().picture(u"\\\\srv\\pub\\map.wmf"))
            .shape(Shape().text(Text(u"see \x1B[2J here").link(web, 4, 13)));
        deck.add_notes().shape(Shape().object(wav));
        deck.properties(PropertyStream()
                            .text(u"MORVANE-LINK-ID=42%%", u"c:\\film.avi")
                            .text(u"MORVANE-LINK-ID", u"7")
                            .build());
        deck.write(path(name));
    }

    static std::vector<nlohmann::json> lines(const std::string& out) {
        std::vector<nlohmann::json> objects;
        std::istringstream stream(out);
        for (std::string line; std::getline(stream, line);) {
            objects.push_back(nlohmann::json::parse(line));
        }
        return objects;
    }
};

} // namespace pptlinks

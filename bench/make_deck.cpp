// Writes a presentation of a chosen size for the benchmark: slides with ordinary shapes, hyperlinks
// spread evenly over them, half of them on shapes and half in texts, and a stream of pictures.
//
//     make_deck OUT --slides N --links N --pictures BYTES
#include "tests/support/presentation_builder.h"

#include <charconv>
#include <cstdio>
#include <stdexcept>
#include <string>

namespace {

using namespace presentation_builder;

struct Sizes {
    std::string out;
    std::uint64_t slides = 10;
    std::uint64_t links = 100;
    std::uint64_t pictures = 0;
};

std::uint64_t number(std::string_view text) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size()) {
        throw std::invalid_argument("not a number: " + std::string(text));
    }
    return value;
}

Sizes parse(std::span<char*> arguments) {
    Sizes sizes;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view name = arguments[i];
        std::uint64_t* const value = name == "--slides"     ? &sizes.slides
                                     : name == "--links"    ? &sizes.links
                                     : name == "--pictures" ? &sizes.pictures
                                                            : nullptr;
        if (value == nullptr) {
            sizes.out = name;
        } else if (++i < arguments.size()) {
            *value = number(arguments[i]);
        } else {
            throw std::invalid_argument("no number behind " + std::string(name));
        }
    }
    if (sizes.out.empty() || sizes.slides == 0) {
        throw std::invalid_argument("an output file and at least one slide are needed");
    }
    return sizes;
}

std::u16string digits(std::uint64_t value) {
    const std::string text = std::to_string(value);
    return {text.begin(), text.end()};
}

// Targets as people have them: on a server, on a drive, beside the presentation, on the web.
std::u16string target(std::uint64_t link) {
    switch (link % 4) {
    case 0:
        return u"\\\\fileserver\\projects\\Quarterly Review\\Figures\\report-" + digits(link) +
               u".xls";
    case 1:
        return u"C:\\Documents\\Projects\\Northern Region\\minutes-" + digits(link) + u".doc";
    case 2:
        return u"..\\figures\\chart-" + digits(link) + u".xls";
    default:
        return u"http://www.example.org/archive/page-" + digits(link) + u".html";
    }
}

// What a slide holds without any link.
void add_content(Page& slide, std::uint64_t number_of_slide) {
    slide.shape(Shape().text(Text(u"Results of part " + digits(number_of_slide), 0)));
    slide.shape(Shape().text(Text(u"Sales rose in all regions.\rCosts stayed as planned.\r"
                                  u"The outlook for the next quarter is good.",
                                  1)));
}

// The links from `first` up to `end`, alternately on a shape and in a line of one text box.
void add_links(Deck& deck, Page& slide, std::uint64_t first, std::uint64_t end) {
    std::u16string text;
    struct Range {
        std::uint32_t id, begin, end;
    };
    std::vector<Range> ranges;
    for (std::uint64_t link = first; link < end; ++link) {
        const std::u16string label = u"source " + digits(link);
        const std::uint32_t id = deck.declare({target(link), label});
        if (link % 2 == 0) {
            slide.shape(Shape().link(id));
            continue;
        }
        text += u"See ";
        const std::uint32_t begin = static_cast<std::uint32_t>(text.size());
        text += label;
        ranges.push_back({id, begin, static_cast<std::uint32_t>(text.size())});
        text += u"\r";
    }
    if (!ranges.empty()) {
        Text box(std::move(text));
        for (const Range& range : ranges) {
            box.link(range.id, range.begin, range.end);
        }
        slide.shape(Shape().text(box));
    }
}

Bytes properties(std::uint64_t links) {
    std::vector<ListedHyperlink> listed;
    listed.reserve(links);
    for (std::uint64_t link = 0; link < links; ++link) {
        listed.push_back({target(link)});
    }
    return PropertyStream().blob(u"_PID_HLINKS", hyperlink_list(listed)).build();
}

void write_deck(const Sizes& sizes) {
    Deck deck;
    deck.add_master().name(u"Default Design");
    for (std::uint64_t slide = 0; slide < sizes.slides; ++slide) {
        Page& page = deck.add_slide();
        add_content(page, slide + 1);
        add_links(deck, page, sizes.links * slide / sizes.slides,
                  sizes.links * (slide + 1) / sizes.slides);
    }
    deck.pictures(sizes.pictures).properties(properties(sizes.links)).write(sizes.out);
}

} // namespace

int main(int count, char** arguments) {
    try {
        write_deck(parse(std::span(arguments, static_cast<std::size_t>(count)).subspan(1)));
        return 0;
    } catch (const std::invalid_argument& error) {
        std::fprintf(stderr,
                     "make_deck: %s\nUsage: make_deck OUT --slides N --links N --pictures BYTES\n",
                     error.what());
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make_deck: %s\n", error.what());
        return 1;
    }
}

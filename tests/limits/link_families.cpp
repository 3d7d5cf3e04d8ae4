// External objects and texts with links.
#include "tests/limits/families.h"
#include "tests/support/presentation_builder.h"

#include <algorithm>

namespace limits {

namespace {

using namespace presentation_builder;

// A slide with a shape that shows each of the objects, once for each time that it is named.
void show(Deck& deck, std::span<const std::uint32_t> objects) {
    Bytes references;
    for (const std::uint32_t object : objects) {
        bytes::append(references, external_object_ref(object));
    }
    deck.add_slide().shape(Shape().record(client_data(references)));
}

Bytes objects_used_once(std::size_t count, const std::u16string& target) {
    Deck deck;
    std::vector<std::uint32_t> objects;
    for (std::size_t i = 0; i < count; ++i) {
        objects.push_back(deck.declare({target.empty() ? std::nullopt : std::optional(target)}));
    }
    show(deck, objects);
    return deck.image();
}

Bytes hyperlinks_used_once(std::size_t count) {
    return objects_used_once(count, u"C:\\old\\a.doc");
}

Bytes hyperlinks_without_target(std::size_t count) {
    return objects_used_once(count, {});
}

Bytes hyperlinks_with_a_short_target(std::size_t count) {
    return objects_used_once(count, u"a");
}

Bytes used_often(std::size_t count, std::u16string target) {
    Deck deck;
    const std::vector<std::uint32_t> objects(count, deck.hyperlink(std::move(target)));
    show(deck, objects);
    return deck.image();
}

Bytes hyperlink_used_often(std::size_t count) {
    return used_often(count, u"C:\\old\\a.doc");
}

Bytes long_hyperlink_used_often(std::size_t count) {
    return used_often(count, u"C:\\old\\" + std::u16string(1000, u'x'));
}

// All objects of one video list have the same place in the object list.
Bytes video_list_with_many_videos(std::size_t count) {
    Deck deck;
    Bytes videos;
    std::vector<std::uint32_t> objects;
    for (std::size_t i = 0; i < count; ++i) {
        objects.push_back(deck.next_object_id());
        bytes::append(videos, media(record_type::kExternalVideo, objects.back(), u"a"));
    }
    deck.external_object(video_list(videos));
    show(deck, objects);
    return deck.image();
}

// One box, and in it links that each cover all of its text.
Bytes text_with_links(std::size_t count, const std::u16string& text, bool two_texts) {
    Deck deck;
    const std::uint32_t target = deck.hyperlink(u"C:\\old\\a.doc");
    Text box(text);
    for (std::size_t i = 0; i < count; ++i) {
        box.link(target, two_texts ? 1 : 0, static_cast<std::uint32_t>(text.size()));
    }
    if (two_texts) {
        box.record(text_header(4));
        box.record(text_chars(u"another"));
    }
    deck.add_slide().shape(Shape().text(box));
    return deck.image();
}

Bytes links_over_one_text(std::size_t count) {
    return text_with_links(count, std::u16string(20 * count, u'x'), false);
}

// Not a character of it is left when the paragraph marks at its end are not counted.
Bytes links_over_paragraph_marks(std::size_t count) {
    return text_with_links(count, std::u16string(20 * count, u'\r'), true);
}

// Each link ends in front of the one before it.
Bytes links_backwards_over_paragraph_marks(std::size_t count) {
    Deck deck;
    const std::uint32_t target = deck.hyperlink(u"C:\\old\\a.doc");
    const std::size_t length = 400 * count;
    Text box(std::u16string(length, u'\r'));
    for (std::size_t i = 0; i < count; ++i) {
        const auto end = static_cast<std::uint32_t>(length - i);
        box.link(target, end - 1, end);
    }
    deck.add_slide().shape(Shape().text(box));
    return deck.image();
}

// Three bytes in UTF-8, so that the first 1023 units do not fit.
Bytes links_over_wide_characters(std::size_t count) {
    return text_with_links(count,
                           std::u16string(341, u'\u4E00') +
                               std::u16string(std::max<std::size_t>(count, 1000), u'x'),
                           false);
}

// Behind the range of the first link there are none: the others cover everything that stands there.
Bytes links_without_ranges(std::size_t count) {
    Deck deck;
    const std::uint32_t target = deck.hyperlink(u"C:\\old\\a.doc");
    Bytes box = join({text_header(4), text_chars(u"text"), text_header(4),
                      text_chars(std::u16string(20 * count, u'\r'))});
    for (std::size_t i = 0; i < count; ++i) {
        bytes::append(box, interactive_info({.hyperlink_id = target}));
    }
    deck.add_slide().shape(Shape().record(client_textbox(box)));
    return deck.image();
}

Bytes many_short_texts(std::size_t count) {
    Deck deck;
    const std::uint32_t target = deck.hyperlink(u"C:\\old\\a.doc");
    Bytes texts;
    for (std::size_t i = 0; i < count; ++i) {
        bytes::append(texts, Text(u"text").link(target, 0, 4).records());
    }
    deck.add_slide().shape(Shape().record(client_textbox(texts)));
    return deck.image();
}

constexpr Family kFamilies[] = {
    {"HyperlinksUsedOnce", hyperlinks_used_once, kMost},
    {"HyperlinksWithoutTarget", hyperlinks_without_target, kMost},
    {"HyperlinksWithAShortTarget", hyperlinks_with_a_short_target, kMost},
    {"HyperlinkUsedOften", hyperlink_used_often, kMost},
    {"LongHyperlinkUsedOften", long_hyperlink_used_often, kMost / 4},
    {"VideoListWithManyVideos", video_list_with_many_videos, kMost / 4},
    {"LinksOverOneText", links_over_one_text, kMost / 25},
    {"LinksOverParagraphMarks", links_over_paragraph_marks, kMost / 25},
    {"LinksOverWideCharacters", links_over_wide_characters, kMost / 25},
    {"LinksWithoutRanges", links_without_ranges, kMost / 25},
    {"ManyShortTexts", many_short_texts, kMost / 10},
    {"ReplacedLinksOverOneText", links_over_one_text, kMost / 25, {}, {}, {}, "ht"},
    {"ReplacedLinksOverParagraphMarks", links_over_paragraph_marks, kMost / 25, {}, {}, {}, "ht"},
    {"ReplacedLinksBackwards", links_backwards_over_paragraph_marks, 1000, {}, {}, {}, "ht"},
    {"ReplacedLinksOverWideCharacters", links_over_wide_characters, kMost / 25, {}, {}, {}, "ht"},
    {"ReplacedLinksWithoutRanges", links_without_ranges, kMost / 25, {}, {}, {}, "ht"},
    {"ReplacedManyShortTexts", many_short_texts, kMost / 10, {}, {}, {}, "ht"},
};

} // namespace

std::span<const Family> link_families() {
    return kFamilies;
}

} // namespace limits

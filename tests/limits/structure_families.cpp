// User edits, the persist directory, slide lists and groups of shapes.
#include "tests/limits/families.h"
#include "tests/support/presentation_builder.h"

#include <vector>

namespace limits {

namespace {

using namespace presentation_builder;

constexpr std::uint32_t kHyperlink = 1;

// A deck around a document stream that the family composes itself.
Bytes file_around(Bytes document_stream, std::uint32_t newest_edit) {
    Deck deck;
    deck.replace_document_stream(std::move(document_stream));
    deck.replace_current_user(current_user_atom(newest_edit));
    return deck.image();
}

// A deck with one link on its only slide, and the stream that it makes.
Deck small_deck() {
    Deck deck;
    deck.hyperlink(u"C:\\old\\a.doc");
    deck.add_slide().shape(Shape().link(kHyperlink));
    return deck;
}

std::uint32_t end_of(const Bytes& stream) {
    return static_cast<std::uint32_t>(stream.size());
}

// Edits behind the first save, each with an empty persist directory of its own.
Bytes edits_behind_each_other(std::size_t count, bool cycle) {
    Deck deck = small_deck();
    Bytes stream = deck.document_stream();
    std::uint32_t previous = deck.offset_of_user_edit(0);
    if (cycle) {
        const std::uint32_t size_of_a_step = 8 + 36;
        previous = end_of(stream) + static_cast<std::uint32_t>(count - 1) * size_of_a_step + 8;
    }
    for (std::size_t i = 0; i < count; ++i) {
        UserEdit edit;
        edit.previous_edit = previous;
        edit.persist_directory = end_of(stream);
        bytes::append(stream, persist_directory_atom({}));
        previous = end_of(stream);
        bytes::append(stream, user_edit_atom(edit));
    }
    return file_around(std::move(stream), previous);
}

Bytes user_edit_chain(std::size_t count) {
    return edits_behind_each_other(count, false);
}

Bytes user_edit_cycle(std::size_t count) {
    return edits_behind_each_other(count, true);
}

// Edits that begin every 12 bytes, though each takes 36: type, previous edit and persist directory
// of three edits interlock. Each has a directory of its own, without entries.
Bytes overlapping_user_edits(std::size_t count) {
    constexpr std::uint32_t kStep = 12;
    constexpr std::uint32_t kDirectory = 8; // in bytes
    Deck deck = small_deck();
    Bytes stream = deck.document_stream();
    const std::uint32_t directories = end_of(stream);
    for (std::size_t i = 0; i < count; ++i) {
        bytes::append(stream, persist_directory_atom({}));
    }
    const std::uint32_t first = end_of(stream);
    // The edit at `at` finds its previous edit at at + 16 and its directory at at + 20.
    for (std::uint32_t i = 0; i < count + 2; ++i) {
        const std::uint32_t edit = i == 0 ? 0 : i - 1; // that these words belong to
        bytes::append_u32(stream, std::uint32_t{record_type::kUserEditAtom} << 16);
        bytes::append_u32(stream, edit == 0 ? 0 : first + (edit - 1) * kStep);
        bytes::append_u32(stream, directories + edit * kDirectory);
    }
    stream.resize(stream.size() + kStep);
    return file_around(std::move(stream), first + static_cast<std::uint32_t>(count - 1) * kStep);
}

// A drawing whose outermost group holds these records.
Bytes drawing_of(View members) {
    return container(
        0, record_type::kDrawing,
        {container(0, record_type::kArtDrawing,
                   {atom(0, record_type::kArtDrawingAtom, Bytes{1, 0, 0, 0, 0, 0, 0, 0}),
                    container(0, record_type::kArtShapeGroup, {members})})});
}

Bytes nested_groups(std::size_t count) {
    Bytes groups;
    for (std::size_t left = count; left-- > 0;) {
        bytes::append_u16(groups, 0x0F);
        bytes::append_u16(groups, record_type::kArtShapeGroup);
        bytes::append_u32(groups, static_cast<std::uint32_t>(8 * left));
    }
    Deck deck = small_deck();
    deck.add_slide().record_before_drawing(drawing_of(groups));
    return deck.image();
}

Bytes shapes_beside_each_other(std::size_t count) {
    Deck deck = small_deck();
    const Bytes shape = container(0, record_type::kArtShape,
                                  {client_data(interactive_info({.hyperlink_id = kHyperlink}))});
    Bytes shapes;
    for (std::size_t i = 0; i < count; ++i) {
        bytes::append(shapes, shape);
    }
    deck.add_slide().record_before_drawing(drawing_of(shapes));
    return deck.image();
}

// The persist directory names the slide again and again.
Bytes directory_naming_one_object(std::size_t count) {
    Deck deck = small_deck();
    Page& slide = deck.add_slide();
    deck.save();
    const PersistEntry entry{slide.persist_id(), deck.offset_of(slide)};
    for (std::size_t i = 0; i < count; ++i) {
        deck.directory_entry(entry);
    }
    deck.longest_run(1);
    return deck.image();
}

// Many ids for one object.
Bytes ids_sharing_an_object(std::size_t count) {
    Deck deck = small_deck();
    Page& slide = deck.add_slide();
    deck.save();
    const std::uint32_t offset = deck.offset_of(slide);
    for (std::size_t i = 0; i < count; ++i) {
        deck.directory_entry({10 + static_cast<std::uint32_t>(i), offset});
    }
    return deck.image();
}

// A slide list that names its only slide `times` more times.
Bytes list_naming_one_slide(std::size_t times, const Shape& shape, std::size_t tags) {
    Deck deck;
    deck.hyperlink(u"C:\\old\\a.doc");
    Page& slide = deck.add_slide();
    slide.shape(shape).shape_count(0x7FFFFFFF); // bounds the tags that count
    for (std::size_t i = 0; i < tags; ++i) {
        slide.tag(u"OBRIN-LINK-NUM=", u"1");
    }
    const Bytes named = slide_persist_atom({slide.persist_id(), slide.slide_id(), 0});
    Bytes all;
    for (std::size_t i = 0; i < times; ++i) {
        bytes::append(all, named);
    }
    deck.list_record(PageKind::slide, all);
    return deck.image();
}

Shape linked_text(std::size_t length) {
    return Shape().text(Text(std::u16string(length, u'x')).link(kHyperlink, 0, 4));
}

constexpr std::size_t kFewTimes = 14;

Bytes slide_list_naming_a_small_slide(std::size_t count) {
    return list_naming_one_slide(count, Shape(), 0);
}

Bytes slide_list_naming_a_large_slide(std::size_t count) {
    return list_naming_one_slide(count, linked_text(count), 0);
}

Bytes slide_list_naming_a_text_a_few_times(std::size_t count) {
    return list_naming_one_slide(kFewTimes, linked_text(count), 0);
}

// The tags are link ids as older versions kept them.
Bytes slide_list_naming_tags_a_few_times(std::size_t count) {
    return list_naming_one_slide(kFewTimes, Shape().link(kHyperlink), count);
}

Bytes slides_that_are_not_there(std::size_t count) {
    Deck deck = small_deck();
    Bytes all;
    for (std::size_t i = 0; i < count; ++i) {
        bytes::append(all, slide_persist_atom({0xFFFFF, 256, 0}));
    }
    deck.list_record(PageKind::slide, all);
    return deck.image();
}

constexpr Family kFamilies[] = {
    {"UserEditChain", user_edit_chain, kMost / 4, {}, {8140}},
    {"UserEditCycle", user_edit_cycle, kMost / 4, {8140}, {}, {8140}},
    {"OverlappingUserEdits", overlapping_user_edits, kMost, {8140}, {}, {8140}},
    {"NestedGroups", nested_groups, kMost, {8140}},
    {"ShapesBesideEachOther", shapes_beside_each_other, kMost / 4},
    {"DirectoryNamingOneObject", directory_naming_one_object, kMost},
    {"IdsSharingAnObject", ids_sharing_an_object, kMost},
    {"SlideListNamingASmallSlide", slide_list_naming_a_small_slide, kMost},
    {"SlideListNamingALargeSlide", slide_list_naming_a_large_slide, kMost / 4, {8140}, {}, {8140}},
    {"SlideListNamingATextAFewTimes", slide_list_naming_a_text_a_few_times, 10 * kMost, {8140}},
    {"SlideListNamingTagsAFewTimes", slide_list_naming_tags_a_few_times, kMost / 4, {8140}},
    {"SlidesThatAreNotThere", slides_that_are_not_there, kMost / 4, {5650}},
};

} // namespace

std::span<const Family> structure_families() {
    return kFamilies;
}

} // namespace limits

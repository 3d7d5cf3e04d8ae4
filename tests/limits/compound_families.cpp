// The compound file around the presentation: its chains, its directory and its mini stream
// ([MS-CFB]).
#include "tests/limits/compound_image.h"
#include "tests/limits/families.h"
#include "tests/support/presentation_builder.h"

namespace limits {

namespace {

using namespace presentation_builder;

constexpr std::size_t kSector = 512;

constexpr std::u16string_view kDocument = u"PowerPoint Document";

// A presentation of about `size` bytes, most of them in a text.
Deck deck_of(std::size_t size) {
    Deck deck;
    const std::uint32_t target = deck.hyperlink(u"C:\\old\\a.doc");
    deck.add_slide().shape(Shape().link(target).text(Text(std::u16string(size / 2, u'x'))));
    return deck;
}

constexpr std::uint32_t kMostClaimed = 0x7FFFFFFF; // of a stream

Bytes claiming_more(Deck& deck) {
    CompoundImage image(deck.image());
    image.set(image.entry(kDocument) + kSize, kMostClaimed);
    return image.take();
}

// The document never ends.
Bytes endless_document(std::size_t count) {
    Deck deck = deck_of(kSector * count);
    CompoundImage image(claiming_more(deck));
    const std::uint32_t first = image.get(image.entry(kDocument) + kFirst);
    image.set_link(image.last_sector(first), first);
    return image.take();
}

// All that a slide list makes read again lies inside what the document claims to be.
Bytes claiming_document_with_a_slide_named_often(std::size_t count) {
    Deck deck = deck_of(kSector * count / 2);
    Page& slide = deck.add_slide();
    slide.shape(Shape().text(Text(std::u16string(kSector * count / 8, u'x'))));
    const Bytes named = slide_persist_atom({slide.persist_id(), slide.slide_id(), 0});
    Bytes all;
    for (std::size_t i = 0; i < kSector * count / 4 / named.size(); ++i) {
        bytes::append(all, named);
    }
    deck.list_record(PageKind::slide, all);
    return claiming_more(deck);
}

// A record that claims nearly all of what the document claims.
Bytes claiming_document_with_a_claiming_record(std::size_t count) {
    Deck deck = deck_of(kSector * count);
    Bytes record = atom(0, record_type::kCString, Bytes(8));
    bytes::store_u32(record, 4, kMostClaimed / 2);
    deck.add_slide().record(record);
    return claiming_more(deck);
}

Bytes endless_directory(std::size_t count) {
    Deck deck = deck_of(0);
    for (std::size_t i = 0; i < count; ++i) {
        deck.storage(u"storage " + std::u16string(1, static_cast<char16_t>(0x4E00 + i)));
    }
    CompoundImage image(deck.image());
    const std::uint32_t first = image.first_directory_sector();
    image.set_link(image.last_sector(first), first);
    return image.take();
}

Bytes streams_sharing_all_sectors(std::size_t count) {
    Deck deck = deck_of(kSector * count);
    deck.pictures(8192);
    CompoundImage image(deck.image());
    const std::size_t document = image.entry(kDocument);
    const std::size_t pictures = image.entry(u"Pictures");
    image.set(pictures + kFirst, image.get(document + kFirst));
    image.set(pictures + kSize, image.get(document + kSize));
    return image.take();
}

// Every one of many streams begins where the document begins, and is as long.
Bytes many_streams_sharing_sectors(std::size_t count) {
    Deck deck = deck_of(kSector * count);
    for (std::size_t i = 0; i < count; ++i) {
        deck.stream(u"stream " + std::u16string(1, static_cast<char16_t>(0x4E00 + i)), {});
    }
    CompoundImage image(deck.image());
    const std::size_t document = image.entry(kDocument);
    for (std::size_t id = 1; id < image.entries(); ++id) {
        if (image.get(image.entry(id) + kSize) == 0) {
            image.set(image.entry(id) + kFirst, image.get(document + kFirst));
            image.set(image.entry(id) + kSize, image.get(document + kSize));
        }
    }
    return image.take();
}

// A tree of siblings that is a list.
Bytes directory_that_is_a_list(std::size_t count) {
    Deck deck = deck_of(0);
    for (std::size_t i = 0; i < count; ++i) {
        deck.stream(u"stream " + std::u16string(1, static_cast<char16_t>(0x4E00 + i)), {});
    }
    CompoundImage image(deck.image());
    image.set(image.entry(std::size_t{0}) + kChild, 1);
    for (std::size_t id = 1; id < image.entries(); ++id) {
        image.set(image.entry(id) + kLeft, kNone);
        image.set(image.entry(id) + kRight,
                  id + 1 < image.entries() ? static_cast<std::uint32_t>(id + 1) : kNone);
    }
    return image.take();
}

// Storages, each in the one before it; the first stands behind the streams.
Bytes nested_storages(std::size_t count) {
    Deck deck = deck_of(0);
    for (std::size_t i = 0; i < count; ++i) {
        deck.storage(u"storage " + std::u16string(1, static_cast<char16_t>(0x4E00 + i)));
    }
    CompoundImage image(deck.image());
    const std::size_t root = image.entry(std::size_t{0});
    std::size_t link = root + kChild;
    for (std::uint32_t id = 1; id <= count + 2; ++id) {
        const std::size_t entry = image.entry(id);
        image.set(link, id);
        image.set(entry + kLeft, kNone);
        image.set(entry + kRight, kNone);
        link = entry + (id <= 2 ? kRight : kChild); // two streams, then the storages
    }
    return image.take();
}

// A copy that took them would be 4 MB larger for each sector of links.
Bytes free_links_far_behind_the_end(std::size_t count) {
    Deck deck;
    deck.version(compound_file::Version::v4);
    Shape shape;
    for (std::size_t i = 0; i < 1000; ++i) {
        shape.link(deck.hyperlink(u"C:\\a"));
    }
    deck.add_slide().shape(shape);
    CompoundImage image(deck.image());
    image.leave_free_only_the_last_links_of(count);
    return image.take();
}

constexpr Family kFamilies[] = {
    {"EndlessDocument", endless_document, 10000, {}, {8140}},
    {"ClaimingDocumentWithASlideNamedOften",
     claiming_document_with_a_slide_named_often,
     10000,
     {8140},
     {},
     {8140}},
    {"ClaimingDocumentWithAClaimingRecord",
     claiming_document_with_a_claiming_record,
     10000,
     {8140},
     {8140}},
    {"EndlessDirectory", endless_directory, 10000},
    {"StreamsSharingAllSectors", streams_sharing_all_sectors, 10000, {}, {6300}},
    {"ManyStreamsSharingSectors", many_streams_sharing_sectors, 8000, {}, {6300}},
    {"DirectoryThatIsAList", directory_that_is_a_list, 10000},
    {"FreeLinksFarBehindTheEnd", free_links_far_behind_the_end, 100},
    {"NestedStorages", nested_storages, 10000},
};

} // namespace

std::span<const Family> compound_families() {
    return kFamilies;
}

} // namespace limits

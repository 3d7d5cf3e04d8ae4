// The storages of linked OLE objects.
#include "tests/limits/compound_image.h"
#include "tests/limits/families.h"
#include "tests/support/memory_backing.h"
#include "tests/support/ole_storage.h"
#include "tests/support/presentation_builder.h"

#include <algorithm>
#include <string>

namespace limits {

namespace {

using namespace presentation_builder;

// A slide with a shape that shows each of the objects.
void show(Deck& deck, std::span<const std::uint32_t> objects) {
    Bytes references;
    for (const std::uint32_t object : objects) {
        bytes::append(references, external_object_ref(object));
    }
    deck.add_slide().shape(Shape().record(client_data(references)));
}

Bytes ole_source() {
    return file_moniker({"C:\\old\\book.xls"});
}

Bytes many_ole_objects(std::size_t count) {
    const Bytes record = storage_record(ole_storage(linked_object({{}, ole_source()})), true);
    Deck deck;
    std::vector<std::uint32_t> objects;
    for (std::size_t i = 0; i < count; ++i) {
        objects.push_back(deck.ole_link(record));
    }
    show(deck, objects);
    return deck.image();
}

// Different ids, all at one large storage.
Bytes ole_objects_sharing_a_storage(std::size_t count) {
    constexpr std::uint32_t kOffset = 8;
    constexpr std::uint32_t kFirstId = 10;
    Streams streams = linked_object({{}, ole_source()});
    streams[u"Contents"] = Bytes(10 * count, 1);
    Deck deck;
    deck.loose_bytes(join({Bytes(kOffset), storage_record(ole_storage(streams), false)}));
    std::vector<std::uint32_t> objects;
    for (std::uint32_t i = 0; i < count; ++i) {
        objects.push_back(deck.next_object_id());
        deck.external_object(external_ole_link(objects.back(), kFirstId + i));
        deck.directory_entry({kFirstId + i, kOffset});
    }
    show(deck, objects);
    return deck.image();
}

// A thousand times as large as it looks.
Bytes storage_of_zeros(std::size_t count) {
    Streams streams = linked_object({{}, ole_source()});
    streams[u"Contents"] = Bytes(count);
    Deck deck;
    const std::uint32_t object[] = {deck.ole_link(storage_record(ole_storage(streams), true))};
    show(deck, object);
    return deck.image();
}

Bytes storage_claiming_4_gigabytes(std::size_t count) {
    Streams streams = linked_object({{}, ole_source()});
    streams[u"Contents"] = Bytes(count);
    Deck deck;
    const std::uint32_t object[] = {
        deck.ole_link(storage_record_claiming(ole_storage(streams), 0xFFFFFFFF))};
    show(deck, object);
    return deck.image();
}

// The OLE stream claims all that the format allows, and its first moniker as much.
Bytes moniker_claiming_2_gigabytes(std::size_t count) {
    Bytes stream = ole_stream({{}, ole_source()});
    constexpr std::size_t kRelativeSize = 20;
    stream.resize(kRelativeSize + 4 + count);
    bytes::store_u32(stream, kRelativeSize, 0x7FFFFF00);
    Bytes image = ole_storage({{kOleStreamName, stream}});
    const Bytes name = utf16(kOleStreamName);
    const auto entry = std::search(image.begin(), image.end(), name.begin(), name.end());
    const auto at = static_cast<std::size_t>(entry - image.begin());
    bytes::store_u32(image, at + kSize, 0x7FFFFFFF);
    Deck deck;
    const std::uint32_t object[] = {deck.ole_link(storage_record(image, false))};
    show(deck, object);
    return deck.image();
}

Bytes moniker_of_many_items(std::size_t count) {
    Bytes parts = ole_source();
    const Bytes item = item_moniker("a");
    for (std::size_t i = 0; i < count; ++i) {
        bytes::append(parts, item);
    }
    Bytes moniker = composite_moniker({ole_source(), item});
    constexpr std::size_t kClassAndCount = 20;
    moniker.resize(kClassAndCount);
    bytes::store_u32(moniker, 16, static_cast<std::uint32_t>(count + 1));
    bytes::append(moniker, parts);
    Deck deck;
    const std::uint32_t object[] = {
        deck.ole_link(storage_record(ole_storage(linked_object({{}, moniker})), false))};
    show(deck, object);
    return deck.image();
}

// A presentation with one linked object in such a storage, compressed.
Bytes deck_with_storage(View image) {
    Deck deck;
    deck.add_slide().shape(Shape().object(deck.ole_link(storage_record(image, true))));
    return deck.image();
}

// The sectors of version 4 make more of less.
Bytes version_4_storage(const Streams& streams) {
    const auto image = std::make_shared<Bytes>();
    const auto file = compound_file::CompoundFile::create(std::make_unique<MemoryBacking>(image),
                                                          compound_file::Version::v4);
    for (const auto& [name, data] : streams) {
        file->stream(file->create_stream(compound_file::kRoot, name))->write_at(0, data);
    }
    file->flush();
    return *image;
}

Bytes storage_of_one_ole_stream(std::size_t count) {
    OleStream stream{{}, ole_source()};
    stream.rest = Bytes(count, 0xFF);
    return deck_with_storage(ole_storage(linked_object(stream)));
}

// Its links take memory where the block that holds it grows to where they point.
Bytes storage_with_free_links_far_behind_its_end(std::size_t count) {
    OleStream stream{{}, ole_source()};
    stream.rest = Bytes(4096, 0xFF);
    stream.rest->resize(2 * 4096 - ole_stream(stream).size(), 0xFF); // a new source needs a sector
    CompoundImage image(version_4_storage({{kOleStreamName, ole_stream(stream)}}));
    image.leave_free_only_the_last_links_of(count);
    return deck_with_storage(image.take());
}

// Names as long as they may be, each entry the right neighbour of the one before it.
Bytes storage_of_directory_entries(std::size_t count) {
    constexpr std::uint32_t kOwn = 32; // entries of the first sector, of which three are used
    Bytes entries;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string number = std::to_string(100000000 + i);
        Bytes entry =
            utf16(std::u16string(22, u'x') + std::u16string(number.begin(), number.end()));
        entry.resize(kEntry);
        bytes::store_u32(entry, 64, 0x00020040); // a stream; its name takes 64 bytes
        bytes::store_u32(entry, kLeft, kNone);
        bytes::store_u32(entry, kRight,
                         i + 1 < count ? kOwn + static_cast<std::uint32_t>(i) + 1 : kNone);
        bytes::store_u32(entry, kChild, kNone);
        bytes::append(entries, entry);
    }
    CompoundImage image(version_4_storage(
        {{kOleStreamName, ole_stream({{}, ole_source()})}, {u"entries", entries}}));
    const std::size_t stream = image.entry(u"entries");
    image.set_link(image.first_directory_sector(), image.get(stream + kFirst));
    image.set(stream + kFirst, kEndOfChain);
    image.set(stream + kSize, 0);
    image.set(image.entry(std::size_t{0}) + kChild, 1);
    for (const std::uint32_t id : {1U, 2U}) {
        image.set(image.entry(id) + kLeft, kNone);
        image.set(image.entry(id) + kRight, id == 1 ? 2 : kOwn);
    }
    return deck_with_storage(image.take());
}

// Each of its sectors is part of the FAT, of the mini FAT and of the directory; the first ones hold
// the links that make one chain of all.
Bytes storage_of_shared_metadata(std::size_t count) {
    constexpr std::size_t kSector = 4096;
    constexpr std::size_t kLinks = kSector / 4;
    constexpr std::size_t kListed = 109;
    Bytes image = version_4_storage({});
    image.resize(kSector);
    for (std::size_t i = 0; i < count * kLinks; ++i) {
        bytes::append_u32(image, i + 1 < count ? static_cast<std::uint32_t>(i + 1) : kEndOfChain);
    }
    // The list of FAT sectors goes on behind the links of all.
    const std::size_t first_list = (count + kLinks - 1) / kLinks;
    const std::size_t lists = (count - kListed + kLinks - 2) / (kLinks - 1);
    const auto set = [&image](std::size_t at, std::size_t value) {
        bytes::store_u32(image, at, static_cast<std::uint32_t>(value));
    };
    const auto listed = [count](std::size_t i) { return i < count ? i : kNone; };
    set(kFatSectors, count);
    set(kDirectory, 0);
    set(60, 0); // the mini FAT
    set(64, count);
    set(68, first_list);
    set(72, lists);
    for (std::size_t i = 0; i < kListed; ++i) {
        set(kFatList + 4 * i, listed(i));
    }
    for (std::size_t k = 0; k < lists; ++k) {
        const std::size_t at = kSector * (first_list + k + 1);
        for (std::size_t i = 0; i + 1 < kLinks; ++i) {
            set(at + 4 * i, listed(kListed + k * (kLinks - 1) + i));
        }
        set(at + kSector - 4, k + 1 < lists ? first_list + k + 1 : kEndOfChain);
    }
    return deck_with_storage(image);
}

constexpr std::size_t kUnpacked = 75000000; // more memory than there is for so small a file
constexpr std::size_t kMostUnpacked = 15000000;

constexpr Family kFamilies[] = {
    {"ManyOleObjects", many_ole_objects, kMost / 100},
    {"OleObjectsSharingAStorage", ole_objects_sharing_a_storage, kMost / 10},
    {"StorageOfZeros", storage_of_zeros, kUnpacked, {8140}},
    {"StorageClaiming4Gigabytes", storage_claiming_4_gigabytes, kUnpacked, {8140}},
    {"StorageOfOneOleStream", storage_of_one_ole_stream, kMostUnpacked, {8140}},
    {"StorageWithFreeLinksFarBehindItsEnd", storage_with_free_links_far_behind_its_end, 100},
    {"StorageOfDirectoryEntries", storage_of_directory_entries, kMostUnpacked / kEntry},
    {"StorageOfSharedMetadata", storage_of_shared_metadata, kMostUnpacked / 4096, {5700}},
    {"MonikerClaiming2Gigabytes", moniker_claiming_2_gigabytes, kMost, {8140, 7180}},
    {"MonikerOfManyItems", moniker_of_many_items, kMost, {0, 8140}},
};

} // namespace

std::span<const Family> storage_families() {
    return kFamilies;
}

} // namespace limits

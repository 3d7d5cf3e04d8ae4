// A sound compound file whose metadata is changed word by word: header, FAT, mini FAT, directory.
#include "fuzz/support/compound_exercise.h"
#include "fuzz/support/target.h"
#include "tests/support/memory_backing.h"

#include <algorithm>

namespace {

using compound_file::CompoundFile;
using compound_file::EntryId;
using compound_file::kRoot;
using compound_file::Version;

// Streams of every size class in two storages.
bytes::Bytes sound_image(Version version) {
    const auto image = std::make_shared<bytes::Bytes>();
    const auto file =
        CompoundFile::create(std::make_unique<presentation_builder::MemoryBacking>(image), version);
    const EntryId storage = file->create_storage(kRoot, u"storage");
    const EntryId inner = file->create_storage(storage, u"inner");
    std::uint8_t fill = 0;
    for (const EntryId parent : {kRoot, storage, inner}) {
        for (const std::size_t size : {std::size_t{0}, std::size_t{100}, std::size_t{9000}}) {
            const std::u16string name(1 + size % 7, u'a');
            const bytes::Bytes data(size, ++fill);
            file->stream(file->create_stream(parent, name))->write_at(0, data);
        }
    }
    file->flush();
    return *image;
}

// Where the words of metadata stand in an image.
class Metadata {
  public:
    explicit Metadata(bytes::View image)
        : shift_(bytes::load_u16(image, 30))
        , fat_(offset(bytes::load_u32(image, 76)))
        , directory_(offset(bytes::load_u32(image, 48)))
        , mini_fat_(offset(bytes::load_u32(image, 60))) {}

    std::size_t place(std::uint8_t kind, std::size_t word) const {
        const std::size_t starts[] = {0, fat_, directory_, mini_fat_};
        const std::size_t sector_words = std::size_t{1} << (shift_ - 2);
        return starts[kind % std::size(starts)] + 4 * (word % sector_words);
    }

  private:
    std::size_t offset(std::uint32_t sector) const { return (std::size_t{sector} + 1) << shift_; }

    unsigned shift_;
    std::size_t fat_;
    std::size_t directory_;
    std::size_t mini_fat_;
};

} // namespace

// The input is a byte that chooses the version, then for each change the kind of metadata, the
// number of the word there, and its new value.
void fuzz::test_one(bytes::View data) {
    static const bytes::Bytes sound[] = {sound_image(Version::v3), sound_image(Version::v4)};
    constexpr std::size_t kChange = 6;
    bytes::Cursor input(data);
    bytes::Bytes image = sound[input.u8() % std::size(sound)];
    const Metadata metadata(image);
    while (input.remaining() >= kChange) {
        const std::uint8_t kind = input.u8();
        const std::size_t place = metadata.place(kind, input.u8());
        bytes::store_u32(image, place, input.u32());
    }
    fuzz::exercise_image(image);
}

#include "fuzz/support/deck_input.h"

#include "platform/compound_file/compound_file.h"
#include "tests/support/memory_backing.h"

#include <algorithm>
#include <array>

namespace fuzz {

namespace {

using compound_file::CompoundFile;
using compound_file::EntryId;
using compound_file::kRoot;
using presentation_builder::MemoryBacking;

constexpr std::array<const char*, kOptionCount> kOptions = {"", "het", "hetk", "htk"};
constexpr std::uint8_t kStreamsForm = 0x80;

constexpr const char16_t* kCurrentUser = u"Current User";
constexpr const char16_t* kProperties = u"\u0005DocumentSummaryInformation";
constexpr const char16_t* kDocument = u"PowerPoint Document";

bytes::View take_up_to(bytes::Cursor& cursor, std::size_t count) {
    return cursor.take(std::min(count, cursor.remaining()));
}

bytes::Bytes image_of_streams(bytes::Cursor& cursor) {
    const std::size_t user_size = cursor.u16();
    const std::size_t properties_size = cursor.u16();
    const auto image = std::make_shared<bytes::Bytes>();
    const auto file =
        CompoundFile::create(std::make_unique<MemoryBacking>(image), compound_file::Version::v3);
    const auto add = [&](const char16_t* name, bytes::View data) {
        file->stream(file->create_stream(kRoot, name))->write_at(0, data);
    };
    add(kCurrentUser, take_up_to(cursor, user_size));
    if (properties_size > 0) {
        add(kProperties, take_up_to(cursor, properties_size));
    }
    add(kDocument, take_up_to(cursor, cursor.remaining()));
    file->flush();
    return *image;
}

bytes::Bytes stream_of(CompoundFile& file, const char16_t* name) {
    const EntryId entry = file.find(kRoot, name);
    if (entry == compound_file::kNoEntry) {
        return {};
    }
    bytes::Bytes data(static_cast<std::size_t>(file.info(entry).size));
    data.resize(file.stream(entry)->read_at(0, data));
    return data;
}

} // namespace

DeckInput deck_input(bytes::View data) {
    bytes::Cursor cursor(data);
    const std::uint8_t choice = cursor.u8();
    DeckInput input{kOptions[choice % kOptionCount], {}};
    if ((choice & kStreamsForm) != 0) {
        input.image = image_of_streams(cursor);
    } else {
        const bytes::View rest = cursor.take(cursor.remaining());
        input.image.assign(rest.begin(), rest.end());
    }
    return input;
}

bytes::Bytes encode_deck_input(std::size_t options, DeckForm form, bytes::View image) {
    const auto choice = static_cast<std::uint8_t>(options);
    if (form == DeckForm::file) {
        bytes::Bytes input{choice};
        bytes::append(input, image);
        return input;
    }
    const auto file = CompoundFile::open(
        std::make_unique<MemoryBacking>(std::make_shared<bytes::Bytes>(image.begin(), image.end())),
        compound_file::Access::read);
    const bytes::Bytes user = stream_of(*file, kCurrentUser);
    const bytes::Bytes properties = stream_of(*file, kProperties);
    bytes::Bytes input{static_cast<std::uint8_t>(choice | kStreamsForm)};
    bytes::append_u16(input, static_cast<std::uint16_t>(user.size()));
    bytes::append_u16(input, static_cast<std::uint16_t>(properties.size()));
    bytes::append(input, user);
    bytes::append(input, properties);
    bytes::append(input, stream_of(*file, kDocument));
    return input;
}

} // namespace fuzz

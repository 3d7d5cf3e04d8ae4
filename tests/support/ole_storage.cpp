// See ole_storage.h.
#include "tests/support/ole_storage.h"

#include "platform/compound_file/compound_file.h"
#include "tests/support/memory_backing.h"
#include "tests/support/record_finder.h"

#include <zlib.h>

#include <stdexcept>

namespace presentation_builder {

namespace {

using compound_file::CompoundFile;
using compound_file::EntryId;

constexpr std::uint16_t kCompressed = 1;
constexpr std::uint64_t kCreated = 0x01C0AB1234567890;
constexpr std::uint64_t kModified = 0x01C1CD1234567890;

// {0000030x-0000-0000-C000-000000000046}
Bytes moniker_class(std::uint8_t number) {
    return {number, 3, 0, 0, 0, 0, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46};
}

void append_zero_ended(Bytes& out, std::string_view text) {
    out.insert(out.end(), text.begin(), text.end());
    out.push_back(0);
}

void append_moniker(Bytes& out, const Bytes& moniker, bool size_counts_itself) {
    const std::size_t own = size_counts_itself && !moniker.empty() ? 4 : 0;
    bytes::append_u32(out, static_cast<std::uint32_t>(moniker.size() + own));
    bytes::append(out, moniker);
}

Bytes usual_rest() {
    Bytes rest;
    bytes::append_u32(rest, 0xFFFFFFFF);
    for (std::uint8_t i = 0; i < 16; ++i) {
        rest.push_back(static_cast<std::uint8_t>(0xA0 + i)); // class of the source
    }
    const Bytes name = utf16(u"any name");
    bytes::append_u32(rest, static_cast<std::uint32_t>(name.size()));
    bytes::append(rest, name);
    bytes::append_u32(rest, 0);
    for (const std::uint64_t time : {kCreated, kModified, kModified + 1}) {
        bytes::append_u64(rest, time);
    }
    return rest;
}

EntryId parent_of(CompoundFile& file, std::u16string_view& path) {
    EntryId parent = compound_file::kRoot;
    for (std::size_t slash; (slash = path.find(u'/')) != std::u16string_view::npos;) {
        const EntryId found = file.find(parent, path.substr(0, slash));
        parent = found != compound_file::kNoEntry
                     ? found
                     : file.create_storage(parent, path.substr(0, slash));
        file.set_times(parent, kCreated, kModified);
        path.remove_prefix(slash + 1);
    }
    return parent;
}

std::unique_ptr<CompoundFile> open_image(View image) {
    const auto copy = std::make_shared<Bytes>(image.begin(), image.end());
    return CompoundFile::open(std::make_unique<MemoryBacking>(copy), compound_file::Access::read);
}

template <class Visit>
void visit_entries(CompoundFile& file, EntryId storage, const std::u16string& prefix,
                   const Visit& visit) {
    for (const EntryId entry : file.children(storage)) {
        const compound_file::EntryInfo info = file.info(entry);
        visit(prefix + info.name, entry, info);
        if (info.type == compound_file::EntryType::storage) {
            visit_entries(file, entry, prefix + info.name + u"/", visit);
        }
    }
}

} // namespace

Bytes file_moniker(const StoredPath& path) {
    Bytes out = moniker_class(3);
    bytes::append_u16(out, path.parents);
    bytes::append_u32(out, static_cast<std::uint32_t>(path.ansi.size() + 1));
    append_zero_ended(out, path.ansi);
    bytes::append_u16(out, 0xFFFF); // no server
    bytes::append_u16(out, 0xDEAD);
    out.resize(out.size() + 20);
    const Bytes units = utf16(path.wide.value_or(u""));
    bytes::append_u32(out, path.wide ? static_cast<std::uint32_t>(units.size() + 6) : 0);
    if (path.wide) {
        bytes::append_u32(out, static_cast<std::uint32_t>(units.size()));
        bytes::append_u16(out, 3);
        bytes::append(out, units);
    }
    return out;
}

Bytes item_moniker(std::string_view item, std::optional<std::u16string> wide) {
    Bytes out = moniker_class(4);
    bytes::append_u32(out, 2);
    append_zero_ended(out, "!");
    const Bytes units = utf16(wide.value_or(u""));
    bytes::append_u32(out, static_cast<std::uint32_t>(item.size() + 1 + units.size()));
    append_zero_ended(out, item);
    bytes::append(out, units);
    return out;
}

Bytes composite_moniker(std::initializer_list<View> parts) {
    Bytes out = moniker_class(9);
    bytes::append_u32(out, static_cast<std::uint32_t>(parts.size()));
    bytes::append(out, join(parts));
    return out;
}

Bytes unknown_moniker() {
    Bytes out = moniker_class(0x77);
    for (std::uint8_t i = 0; i < 40; ++i) {
        out.push_back(i);
    }
    return out;
}

Bytes ole_stream(const OleStream& stream) {
    Bytes out;
    for (const std::uint32_t value : {0x02000001U, stream.flags, 3U, 0U}) {
        bytes::append_u32(out, value);
    }
    append_moniker(out, {}, false);
    append_moniker(out, stream.relative, stream.sizes_count_themselves);
    append_moniker(out, stream.absolute, stream.sizes_count_themselves);
    bytes::append(out, stream.rest ? *stream.rest : usual_rest());
    return out;
}

Streams linked_object(const OleStream& stream) {
    Bytes picture(9000); // above the limit of the mini stream
    for (std::size_t i = 0; i < picture.size(); ++i) {
        picture[i] = static_cast<std::uint8_t>(i * i >> 3);
    }
    return {{kOleStreamName, ole_stream(stream)},
            {u"\002OlePres000", picture},
            {u"\001CompObj", Bytes(100, 0x5A)},
            {u"Data/Inner", Bytes(300, 0x33)}};
}

Bytes ole_storage(const Streams& streams) {
    const auto image = std::make_shared<Bytes>();
    const auto file =
        CompoundFile::create(std::make_unique<MemoryBacking>(image), compound_file::Version::v3);
    const Bytes link_class = moniker_class(0);
    std::array<std::uint8_t, 16> class_id{};
    std::copy(link_class.begin(), link_class.end(), class_id.begin());
    file->set_class_id(compound_file::kRoot, class_id);
    file->set_times(compound_file::kRoot, 0, kModified);
    for (const auto& [path, data] : streams) {
        std::u16string_view name = path;
        const EntryId parent = parent_of(*file, name);
        file->stream(file->create_stream(parent, name))->write_at(0, data);
    }
    file->flush();
    return *image;
}

Streams streams_of(View image) {
    const auto file = open_image(image);
    Streams streams;
    visit_entries(*file, compound_file::kRoot, u"",
                  [&](const std::u16string& path, EntryId entry, const auto& info) {
                      if (info.type == compound_file::EntryType::stream) {
                          Bytes data(static_cast<std::size_t>(info.size));
                          data.resize(file->stream(entry)->read_at(0, data));
                          streams[path] = std::move(data);
                      }
                  });
    return streams;
}

std::string entries_of(View image) {
    const auto file = open_image(image);
    std::string text;
    const auto describe = [&](const std::u16string& path, EntryId, const auto& info) {
        text += std::string(path.begin(), path.end()) + " class " +
                std::string(info.class_id.begin(), info.class_id.end()) + " bits " +
                std::to_string(info.state_bits) + " times " + std::to_string(info.created) + ' ' +
                std::to_string(info.modified) + '\n';
    };
    describe(u"", compound_file::kRoot, file->info(compound_file::kRoot));
    visit_entries(*file, compound_file::kRoot, u"", describe);
    return text;
}

Bytes storage_record(View image, bool compressed) {
    return compressed ? storage_record_claiming(image, static_cast<std::uint32_t>(image.size()))
                      : atom(0, record_type::kExternalOleObjectStg, image);
}

Bytes storage_record_claiming(View image, std::uint32_t size) {
    uLongf packed = compressBound(static_cast<uLong>(image.size()));
    Bytes body(4 + packed);
    bytes::store_u32(body, 0, size);
    if (compress(body.data() + 4, &packed, image.data(), static_cast<uLong>(image.size())) !=
        Z_OK) {
        throw std::runtime_error("compress");
    }
    body.resize(4 + packed);
    return atom(kCompressed, record_type::kExternalOleObjectStg, body);
}

Bytes image_in_record(View record) {
    const RecordAt header = record_at(record, 0);
    const View body = record.subspan(header.body(), header.length);
    if (header.instance != kCompressed) {
        return {body.begin(), body.end()};
    }
    Bytes image(bytes::load_u32(body, 0));
    uLongf size = static_cast<uLong>(image.size());
    if (uncompress(image.data(), &size, body.data() + 4, static_cast<uLong>(body.size() - 4)) !=
            Z_OK ||
        size != image.size()) {
        throw std::runtime_error("uncompress");
    }
    return image;
}

} // namespace presentation_builder

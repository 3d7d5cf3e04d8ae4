// The compound file of a deck, see presentation_builder.h.
#include "tests/support/memory_backing.h"
#include "tests/support/presentation_builder.h"

#include <algorithm>

namespace presentation_builder {

namespace {

using compound_file::CompoundFile;
using compound_file::EntryId;

// The class of presentations, {64818D10-4F9B-11CF-86EA-00AA00B929E8}.
constexpr std::array<std::uint8_t, 16> kPresentationClass = {
    0x10, 0x8D, 0x81, 0x64, 0x9B, 0x4F, 0xCF, 0x11, 0x86, 0xEA, 0x00, 0xAA, 0x00, 0xB9, 0x29, 0xE8};

void write_stream(CompoundFile& file, EntryId storage, std::u16string_view name, View data) {
    file.stream(file.create_stream(storage, name))->write_at(0, data);
}

EntryId storage_named(CompoundFile& file, EntryId parent, std::u16string_view name) {
    const EntryId found = file.find(parent, name);
    return found != compound_file::kNoEntry ? found : file.create_storage(parent, name);
}

// Makes the storages in front of the last '/', and leaves the last name in `path`.
EntryId parent_of(CompoundFile& file, std::u16string_view& path) {
    EntryId parent = compound_file::kRoot;
    for (std::size_t slash; (slash = path.find(u'/')) != std::u16string_view::npos;) {
        parent = storage_named(file, parent, path.substr(0, slash));
        path.remove_prefix(slash + 1);
    }
    return parent;
}

// Bytes that neither compress nor repeat within a block, the same on every run.
Bytes noise(std::size_t count) {
    Bytes block;
    block.reserve(count + 8);
    for (std::uint64_t state = 88172645463325252U; block.size() < count;) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        bytes::append_u64(block, state);
    }
    block.resize(count);
    return block;
}

void write_pictures(CompoundFile& file, std::uint64_t size) {
    constexpr std::uint64_t kBlockSize = 1 << 20;
    const Bytes block = noise(static_cast<std::size_t>(std::min(size, kBlockSize)));
    const auto stream = file.stream(file.create_stream(compound_file::kRoot, u"Pictures"));
    for (std::uint64_t at = 0; at < size; at += kBlockSize) {
        const std::uint64_t count = std::min(kBlockSize, size - at);
        stream->write_at(at, View(block).first(static_cast<std::size_t>(count)));
    }
}

} // namespace

Deck& Deck::replace_document_stream(Bytes stream) {
    replaced_document_ = std::move(stream);
    return *this;
}

Deck& Deck::replace_current_user(Bytes stream) {
    replaced_current_user_ = std::move(stream);
    return *this;
}

Deck& Deck::version(compound_file::Version version) {
    version_ = version;
    return *this;
}

Deck& Deck::pictures(std::uint64_t size) {
    pictures_size_ = size;
    return *this;
}

Deck& Deck::properties(Bytes stream_bytes) {
    return stream(std::u16string(kDocumentSummaryInformation), std::move(stream_bytes));
}

Deck& Deck::stream(std::u16string path, Bytes data) {
    entries_.push_back({std::move(path), std::move(data)});
    return *this;
}

Deck& Deck::storage(std::u16string path) {
    entries_.push_back({std::move(path), std::nullopt});
    return *this;
}

void Deck::fill(CompoundFile& file) {
    finish();
    file.set_class_id(compound_file::kRoot, kPresentationClass);
    if (pictures_size_ > 0) {
        write_pictures(file, pictures_size_);
    }
    write_stream(file, compound_file::kRoot, u"Current User",
                 replaced_current_user_ ? *replaced_current_user_
                                        : current_user_atom(edits_.back().user_edit));
    write_stream(file, compound_file::kRoot, u"PowerPoint Document",
                 replaced_document_ ? *replaced_document_ : written_);
    for (const Entry& entry : entries_) {
        std::u16string_view name = entry.path;
        const EntryId parent = parent_of(file, name);
        if (entry.data) {
            write_stream(file, parent, name, *entry.data);
        } else {
            storage_named(file, parent, name);
        }
    }
    file.flush();
}

void Deck::write(const std::string& native_path) {
    const auto file = CompoundFile::create(compound_file::create_file(native_path, true), version_);
    fill(*file);
}

Bytes Deck::image() {
    const auto storage = std::make_shared<Bytes>();
    const auto file = CompoundFile::create(std::make_unique<MemoryBacking>(storage), version_);
    fill(*file);
    return *storage;
}

} // namespace presentation_builder

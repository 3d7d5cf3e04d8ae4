#include "fuzz/support/compound_exercise.h"

#include "fuzz/support/target.h"
#include "tests/support/memory_backing.h"

#include <set>

namespace fuzz {

namespace {

using compound_file::Access;
using compound_file::CompoundFile;
using compound_file::EntryId;
using compound_file::EntryInfo;
using compound_file::EntryType;
using compound_file::kRoot;
using presentation_builder::MemoryBacking;

using Image = std::shared_ptr<bytes::Bytes>;

// Runs the action; false when the engine refused it.
template <class Action>
bool accepted(Action action) {
    try {
        action();
        return true;
    } catch (const platform::Error&) {
        return false;
    }
}

std::unique_ptr<CompoundFile> open(const Image& image, Access access) {
    return CompoundFile::open(std::make_unique<MemoryBacking>(image), access);
}

StreamContent read_stream(CompoundFile& file, EntryId entry) {
    constexpr std::size_t kPiece = 3000; // of no sector's size
    StreamContent content;
    content.whole = accepted([&] {
        const auto stream = file.stream(entry);
        bytes::Bytes piece(kPiece);
        while (const std::size_t count = stream->read_at(content.bytes.size(), piece)) {
            bytes::append(content.bytes, bytes::View(piece).first(count));
        }
    });
    return content;
}

// A stream whose sectors lie behind the end of the file reads further when the file has grown.
bool keeps(const StreamContent& before, const StreamContent& now) {
    const bytes::Bytes& old = before.bytes;
    return now.bytes.size() >= old.size() && (!before.whole || now.bytes.size() == old.size()) &&
           std::equal(old.begin(), old.end(), now.bytes.begin());
}

// The streams that may have changed: all others have to be as they were.
using Changed = std::set<EntryId>;

void compare(const StreamContents& before, CompoundFile& file, const Changed& changed) {
    const StreamContents now = read_everything(file);
    for (const auto& [entry, content] : before) {
        if (!changed.contains(entry)) {
            const auto found = now.find(entry);
            require(found != now.end(), "a stream that was not erased is still there");
            require(keeps(content, found->second), "a stream that was not changed keeps its bytes");
        }
    }
}

void change_stream(CompoundFile& file, EntryId entry, std::size_t how) {
    const bytes::Bytes data(700, 0xA5);
    const auto stream = file.stream(entry);
    switch (how % 5) {
    case 0:
        stream->write_at(stream->size() / 2, data);
        break;
    case 1:
        stream->resize(stream->size() + 5000);
        break;
    case 2:
        stream->resize(stream->size() / 3);
        break;
    case 3:
        file.erase(entry);
        break;
    default:
        file.rename(entry, u"renamed");
        stream->write_at(0, data);
    }
}

void change_everything(CompoundFile& file, const StreamContents& before, Changed& changed) {
    constexpr std::size_t kMostStreams = 12;
    for (const auto& [entry, content] : before) {
        if (changed.size() == kMostStreams) {
            break;
        }
        const std::size_t how = changed.size();
        changed.insert(entry);
        accepted([&, id = entry] { change_stream(file, id, how); });
        compare(before, file, changed);
    }
    accepted([&] {
        const EntryId storage = file.create_storage(kRoot, u"new storage");
        file.stream(file.create_stream(storage, u"small"))->resize(100);
        file.stream(file.create_stream(storage, u"large"))->resize(9000);
    });
    compare(before, file, changed);
}

void exercise_changes(const Image& image) {
    StreamContents before;
    Changed changed;
    {
        const auto file = open(image, Access::read_write);
        before = read_everything(*file);
        change_everything(*file, before, changed);
    }
    const auto unflushed = open(image, Access::read_write);
    compare(before, *unflushed, changed);
    change_everything(*unflushed, before, changed);
    if (accepted([&] { unflushed->flush(); })) {
        compare(before, *open(image, Access::read), changed);
    }
}

} // namespace

StreamContents read_everything(CompoundFile& file) {
    StreamContents contents;
    std::set<EntryId> seen{kRoot};
    std::vector<EntryId> storages{kRoot};
    while (!storages.empty()) {
        const EntryId storage = storages.back();
        storages.pop_back();
        for (const EntryId entry : file.children(storage)) {
            require(seen.insert(entry).second, "an entry is in one storage, once");
            const EntryInfo info = file.info(entry);
            file.find(storage, info.name);
            if (info.type == EntryType::stream) {
                contents[entry] = read_stream(file, entry);
            } else {
                storages.push_back(entry);
            }
        }
    }
    return contents;
}

void exercise_image(bytes::View image) {
    const auto copy = std::make_shared<bytes::Bytes>(image.begin(), image.end());
    accepted([&] {
        const auto file = open(copy, Access::read);
        const StreamContents contents = read_everything(*file);
        file->check(true);
        require(std::equal(copy->begin(), copy->end(), image.begin(), image.end()),
                "reading writes nothing");
    });
    accepted([&] { exercise_changes(copy); });
}

} // namespace fuzz

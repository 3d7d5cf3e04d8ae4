// Operations on a sound compound file, checked against a plain model of its entries.
#include "fuzz/support/target.h"
#include "platform/compound_file/compound_file.h"
#include "tests/support/memory_backing.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>

namespace {

using bytes::Bytes;
using compound_file::Access;
using compound_file::CompoundFile;
using compound_file::EntryId;
using compound_file::EntryInfo;
using compound_file::EntryType;
using compound_file::kRoot;
using compound_file::Version;
using fuzz::require;
using presentation_builder::MemoryBacking;

struct ModelEntry {
    EntryId parent = kRoot;
    std::u16string name;
    std::optional<Bytes> content; // none for a storage
    std::uint32_t state_bits = 0;
};

// One run: the file and what it should hold.
class Playback {
  public:
    explicit Playback(Version version)
        : file_(CompoundFile::create(std::make_unique<MemoryBacking>(image_), version)) {}

    void play(bytes::Cursor& input) {
        constexpr int kMostOperations = 200;
        for (int i = 0; i < kMostOperations && input.remaining() > 0; ++i) {
            play_one(input);
        }
        reopen();
        compare();
    }

  private:
    using Known = std::map<EntryId, ModelEntry>::iterator;

    void play_one(bytes::Cursor& input) {
        switch (input.u8() % 11) {
        case 0:
        case 1:
            create(input, true);
            break;
        case 2:
            create(input, false);
            break;
        case 3:
        case 4:
            write(input);
            break;
        case 5:
            resize(input);
            break;
        case 6:
            copy(input);
            break;
        case 7:
            erase(input);
            break;
        case 8:
            rename(input);
            break;
        case 9:
            set_state(input);
            break;
        default:
            reopen();
            compare();
        }
    }

    static std::u16string name(bytes::Cursor& input) {
        const std::uint8_t choice = input.u8();
        const char16_t first = choice < 128 ? u'a' : u'A';
        return std::u16string(1 + choice % 31, static_cast<char16_t>(first + choice % 26));
    }

    static bool same_name(const std::u16string& a, const std::u16string& b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                          [](char16_t x, char16_t y) { return lower(x) == lower(y); });
    }
    static char16_t lower(char16_t unit) {
        return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
    }

    // Sizes around the borders between mini stream, sectors and tables.
    static std::size_t size(bytes::Cursor& input) {
        constexpr std::size_t kBorders[] = {0, 64, 512, 4096, 8192, 66000};
        const std::uint8_t choice = input.u8();
        const std::size_t near = kBorders[choice % std::size(kBorders)];
        return near + input.u8() % 130 - std::min<std::size_t>(near, 65);
    }

    Known choose(bytes::Cursor& input, bool stream) {
        const std::uint8_t skip = input.u8();
        std::size_t there = 0;
        for (const auto& [id, entry] : model_) {
            there += entry.content.has_value() == stream ? 1 : 0;
        }
        auto found = there == 0 ? model_.end() : model_.begin();
        for (std::size_t left = there == 0 ? 0 : skip % there; found != model_.end(); ++found) {
            if (found->second.content.has_value() == stream && left-- == 0) {
                break;
            }
        }
        return found;
    }

    EntryId choose_storage(bytes::Cursor& input) {
        const Known chosen = input.u8() % 3 == 0 ? model_.end() : choose(input, false);
        return chosen == model_.end() ? kRoot : chosen->first;
    }

    Known holder(EntryId parent, const std::u16string& name) {
        return std::find_if(model_.begin(), model_.end(), [&](const auto& known) {
            return known.second.parent == parent && same_name(known.second.name, name);
        });
    }

    void create(bytes::Cursor& input, bool stream) {
        const EntryId parent = choose_storage(input);
        const std::u16string wanted = name(input);
        const bool taken = holder(parent, wanted) != model_.end();
        try {
            const EntryId id = stream ? file_->create_stream(parent, wanted)
                                      : file_->create_storage(parent, wanted);
            require(!taken, "no second entry gets a name that is taken");
            require(model_
                        .emplace(id, ModelEntry{parent, wanted,
                                                stream ? std::optional(Bytes()) : std::nullopt})
                        .second,
                    "a new entry has an id of its own");
        } catch (const platform::Error& error) {
            require(taken && error.code() == platform::Errc::exists,
                    "an entry can be made unless its name is taken");
        }
    }

    void write(bytes::Cursor& input) {
        const Known known = choose(input, true);
        const std::size_t offset = size(input);
        const std::size_t count = size(input);
        if (known == model_.end()) {
            return;
        }
        const Bytes data(count, ++fill_);
        file_->stream(known->first)->write_at(offset, data);
        put(*known->second.content, offset, data);
    }

    static void put(Bytes& target, std::size_t offset, const Bytes& data) {
        if (!data.empty()) {
            target.resize(std::max(target.size(), offset + data.size()));
            std::copy(data.begin(), data.end(),
                      target.begin() + static_cast<std::ptrdiff_t>(offset));
        }
    }

    void resize(bytes::Cursor& input) {
        const Known known = choose(input, true);
        const std::size_t wanted = size(input);
        if (known != model_.end()) {
            file_->stream(known->first)->resize(wanted);
            known->second.content->resize(wanted);
        }
    }

    void copy(bytes::Cursor& input) {
        const Known to = choose(input, true);
        const Known from = choose(input, true);
        const std::size_t source = size(input);
        const std::size_t target = size(input);
        const std::size_t most = size(input);
        if (to == model_.end()) {
            return;
        }
        const Bytes& old = *from->second.content;
        const std::size_t start = std::min(source, old.size());
        const std::size_t count = std::min(most, old.size() - start);
        const auto first = old.begin() + static_cast<std::ptrdiff_t>(start);
        const Bytes data(first, first + static_cast<std::ptrdiff_t>(count));
        const auto stream = file_->stream(from->first);
        const std::uint64_t copied =
            file_->stream(to->first)->copy_range(*stream, source, target, most);
        require(copied == count, "a copy takes what the source has");
        put(*to->second.content, target, data);
    }

    void erase(bytes::Cursor& input) {
        const Known known = choose(input, input.u8() % 4 != 0);
        if (known != model_.end()) {
            file_->erase(known->first);
            forget(known->first);
        }
    }

    void forget(EntryId id) {
        model_.erase(id);
        for (bool found = true; found;) {
            const Known orphan = std::find_if(model_.begin(), model_.end(), [&](const auto& known) {
                return known.second.parent != kRoot && !model_.contains(known.second.parent);
            });
            found = orphan != model_.end();
            if (found) {
                model_.erase(orphan);
            }
        }
    }

    void rename(bytes::Cursor& input) {
        const Known known = choose(input, input.u8() % 2 == 0);
        const std::u16string wanted = name(input);
        if (known == model_.end()) {
            return;
        }
        const Known there = holder(known->second.parent, wanted);
        if (there == model_.end() || there == known) {
            file_->rename(known->first, wanted);
            known->second.name = wanted;
        }
    }

    void set_state(bytes::Cursor& input) {
        const Known known = choose(input, false);
        const std::uint32_t bits = input.u32();
        if (known != model_.end()) {
            file_->set_state_bits(known->first, bits, 0xFFFFFFFF);
            known->second.state_bits = bits;
        }
    }

    void reopen() {
        file_->flush();
        require(file_->check(true).empty(), "a flushed file keeps every rule");
        file_.reset();
        file_ = CompoundFile::open(std::make_unique<MemoryBacking>(image_), Access::read_write);
    }

    void compare() {
        std::map<EntryId, std::size_t> children;
        for (const auto& [id, entry] : model_) {
            require(file_->find(entry.parent, entry.name) == id, "an entry is found by its name");
            ++children[entry.parent];
            const EntryInfo info = file_->info(id);
            require(info.name == entry.name && info.state_bits == entry.state_bits,
                    "an entry keeps what it was given");
            if (entry.content) {
                Bytes content(entry.content->size());
                require(info.size == content.size(), "a stream has its size");
                std::size_t done = 0;
                const auto stream = file_->stream(id);
                while (done < content.size()) {
                    done += stream->read_at(done, std::span(content).subspan(done));
                }
                require(content == *entry.content, "a stream has its bytes");
            } else {
                children.try_emplace(id, 0);
            }
        }
        for (const auto& [storage, count] : children) {
            require(file_->children(storage).size() == count, "a storage lists its entries");
        }
    }

    std::shared_ptr<Bytes> image_ = std::make_shared<Bytes>();
    std::unique_ptr<CompoundFile> file_;
    std::map<EntryId, ModelEntry> model_;
    std::uint8_t fill_ = 0;
};

} // namespace

void fuzz::test_one(bytes::View data) {
    bytes::Cursor input(data);
    Playback(input.u8() % 2 == 0 ? Version::v3 : Version::v4).play(input);
}

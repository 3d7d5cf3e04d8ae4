// Opening and creating files, and everything that callers do to entries.
#include "platform/compound_file/compound_file.h"

#include "platform/compound_file/check.h"
#include "platform/compound_file/engine.h"
#include "platform/compound_file/ownership.h"
#include "platform/compound_file/sector_io.h"
#include "platform/compound_file/stream_node.h"

#include <algorithm>

namespace compound_file {

using platform::Errc;
using platform::Error;

std::unique_ptr<CompoundFile> CompoundFile::open(std::unique_ptr<Backing> backing, Access access) {
    const Header header = read_header(*backing);
    if (access == Access::read_write) {
        header.require_writable();
    }
    return std::make_unique<Engine>(std::move(backing), access, header);
}

std::unique_ptr<CompoundFile> CompoundFile::create(std::unique_ptr<Backing> backing,
                                                   Version version) {
    const Header header = Header::fresh(version);
    const Geometry geometry = header.geometry;
    const std::size_t sector_bytes = geometry.sector_bytes();
    bytes::Bytes fat(sector_bytes, 0xFF);
    bytes::store_u32(fat, 0, kFatSector);
    bytes::store_u32(fat, kLinkBytes, kEndOfChain);
    bytes::Bytes directory(sector_bytes);
    for (std::size_t at = 0; at < sector_bytes; at += kEntryBytes) {
        encode_free_entry(std::span(directory).subspan(at, kEntryBytes));
    }
    Entry root;
    root.type = EntryType::root;
    encode_name(u"Root Entry", directory);
    encode_entry(root, directory);
    bytes::Bytes first_sector(sector_bytes);
    const Header::Raw raw = header.encode();
    std::copy(raw.begin(), raw.end(), first_sector.begin());

    backing->reserve(geometry.offset(2));
    backing->write_at(geometry.offset(0), fat);
    backing->write_at(geometry.offset(1), directory);
    backing->write_at(0, first_sector);
    return open(std::move(backing), Access::read_write);
}

Engine::Engine(std::unique_ptr<Backing> backing, Access access, const Header& header)
    : backing_(std::move(backing))
    , access_(access)
    , header_(header)
    , geometry_(header.geometry)
    , sectors_(geometry_)
    , minis_(geometry_)
    , directory_(geometry_) {
    sectors_.load(*backing_, header_);
    require_metadata_within_file();
    load_directory();
    const Entry& root = directory_.at(kRoot);
    minis_.load(*backing_, sectors_, header_, root.first, root.size);
    if (access_ == Access::read_write) {
        sectors_.free_absent();
        minis_.free_absent();
        crossed_ = claim_sectors(sectors_, minis_, directory_);
    }
}

// FAT, mini FAT and directory take more memory than their sectors do in the file. A file that makes
// each of its sectors all of them is no reason to take their sum for it.
void Engine::require_metadata_within_file() const {
    const auto chain_length = [this](Sector first) {
        return std::uint64_t{sectors_.chain_length(first, sectors_.size())};
    };
    const std::vector<Sector>& fat = sectors_.fat_sectors();
    std::uint64_t metadata = static_cast<std::uint64_t>(std::count_if(
        fat.begin(), fat.end(), [this](Sector sector) { return sectors_.holds(sector); }));
    metadata += chain_length(header_.first_directory);
    if (header_.mini_fat_sectors > 0) {
        metadata += chain_length(header_.first_mini_fat);
    }
    const std::uint64_t present = geometry_.sectors_in(backing_->size());
    if (metadata > present) {
        throw Error(Errc::corrupt, "FAT, mini FAT and directory of " + std::to_string(metadata) +
                                       " sectors, allowed are the " + std::to_string(present) +
                                       " of the file");
    }
}

void Engine::load_directory() {
    const std::uint32_t count = sectors_.chain_length(header_.first_directory, sectors_.size());
    if (count == 0) {
        throw Error(Errc::corrupt, "directory: first sector " +
                                       std::to_string(header_.first_directory) +
                                       ", allowed below " + std::to_string(sectors_.size()));
    }
    std::vector<Sector> places;
    Sector at = header_.first_directory;
    for (std::uint32_t i = 0; i < count; ++i, at = sectors_.next(at)) {
        places.push_back(at);
    }
    bytes::Bytes raw(std::size_t{count} << geometry_.shift());
    read_sectors(*backing_, geometry_, places, raw);
    directory_.load(std::move(raw), std::move(places));
}

void Engine::require_entry(EntryId entry) const {
    if (!directory_.exists(entry)) {
        throw Error(Errc::not_found, "no directory entry " + std::to_string(entry));
    }
}

void Engine::require_storage(EntryId entry) const {
    require_entry(entry);
    if (directory_.at(entry).type == EntryType::stream) {
        throw Error(Errc::invalid_argument,
                    "directory entry " + std::to_string(entry) + " is a stream, not a storage");
    }
}

void Engine::begin_change() {
    if (access_ == Access::read) {
        throw Error(Errc::access, "change of a file opened for reading");
    }
    if (failure_) {
        throw Error(*failure_);
    }
}

EntryId Engine::find(EntryId storage, std::u16string_view name) const {
    require_storage(storage);
    return directory_.find(storage, name);
}

EntryInfo Engine::info(EntryId entry) const {
    require_entry(entry);
    return directory_.info(entry);
}

std::vector<EntryId> Engine::children(EntryId storage) const {
    require_storage(storage);
    return directory_.children(storage);
}

void Engine::require_new_name(EntryId storage, std::u16string_view name, EntryId renamed) const {
    require_valid_name(name);
    const EntryId holder = directory_.find(storage, name);
    if (holder != kNoEntry && holder != renamed) {
        throw Error(Errc::exists, "directory entry " + std::to_string(holder) + " has that name");
    }
}

EntryId Engine::create_entry(EntryId storage, std::u16string_view name, EntryType type) {
    begin_change();
    require_storage(storage);
    require_new_name(storage, name, kNoEntry);
    if (!directory_.has_free_entry()) {
        const Pick pick = take_sectors(directory_.places().back(), 1);
        sectors_.link(pick);
        directory_.add_place(pick.first());
    }
    return directory_.insert(storage, name, type);
}

EntryId Engine::create_stream(EntryId storage, std::u16string_view name) {
    return create_entry(storage, name, EntryType::stream);
}

EntryId Engine::create_storage(EntryId storage, std::u16string_view name) {
    return create_entry(storage, name, EntryType::storage);
}

void Engine::erase(EntryId entry) {
    begin_change();
    require_entry(entry);
    if (entry == kRoot) {
        throw Error(Errc::invalid_argument, "the root cannot be erased");
    }
    const std::vector<EntryId> subtree = directory_.subtree(entry);
    for (const EntryId id : subtree) {
        if (directory_.at(id).type == EntryType::stream) {
            node(id)->abandon();
            nodes_.erase(id);
            crossed_.erase(id);
        }
    }
    directory_.erase(subtree);
}

void Engine::rename(EntryId entry, std::u16string_view name) {
    begin_change();
    require_entry(entry);
    if (entry == kRoot) {
        throw Error(Errc::invalid_argument, "the root cannot be renamed");
    }
    require_new_name(directory_.at(entry).storage, name, entry);
    directory_.rename(entry, name);
}

void Engine::set_class_id(EntryId entry, const std::array<std::uint8_t, 16>& class_id) {
    begin_change();
    require_entry(entry);
    directory_.set_class_id(entry, class_id);
}

void Engine::set_state_bits(EntryId entry, std::uint32_t bits, std::uint32_t mask) {
    begin_change();
    require_entry(entry);
    directory_.set_state_bits(entry, (directory_.info(entry).state_bits & ~mask) | (bits & mask));
}

void Engine::set_times(EntryId entry, std::uint64_t created, std::uint64_t modified) {
    begin_change();
    require_entry(entry);
    directory_.set_times(entry, created, modified);
}

std::shared_ptr<ChainedStream> Engine::node(EntryId entry) {
    std::weak_ptr<ChainedStream>& known = nodes_[entry];
    std::shared_ptr<ChainedStream> held = known.lock();
    if (!held) {
        held = std::make_shared<ChainedStream>(*this, entry);
        known = held;
    }
    return held;
}

std::shared_ptr<StreamNode> Engine::stream(EntryId entry) {
    require_entry(entry);
    if (directory_.at(entry).type != EntryType::stream) {
        throw Error(Errc::invalid_argument,
                    "directory entry " + std::to_string(entry) + " is a storage, not a stream");
    }
    return node(entry);
}

std::vector<std::string> Engine::check(bool strict) {
    return check_image(*backing_, strict);
}

} // namespace compound_file

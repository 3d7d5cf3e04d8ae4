// The whole of one open compound file: the engine behind CompoundFile. Owns the backing, both
// tables and the directory, hands out sectors to streams and writes metadata in order.
//
// Invariants: nothing is handed out before the backing has room for it; `failure_` holds the error
// of a flush that has not been made good, and no change is begun while it does.
#pragma once

#include "platform/compound_file/directory.h"
#include "platform/compound_file/header.h"
#include "platform/compound_file/mini_table.h"
#include "platform/compound_file/sector_table.h"

#include <optional>
#include <unordered_set>

namespace compound_file {

class ChainedStream;

class Engine final : public CompoundFile {
  public:
    // Loads everything but the streams' chains.
    Engine(std::unique_ptr<Backing> backing, Access access, const Header& header);

    Version version() const override { return geometry_.version; }
    Access access() const override { return access_; }
    EntryId find(EntryId storage, std::u16string_view name) const override;
    EntryInfo info(EntryId entry) const override;
    std::vector<EntryId> children(EntryId storage) const override;
    EntryId create_stream(EntryId storage, std::u16string_view name) override;
    EntryId create_storage(EntryId storage, std::u16string_view name) override;
    void erase(EntryId entry) override;
    void rename(EntryId entry, std::u16string_view name) override;
    void set_class_id(EntryId entry, const std::array<std::uint8_t, 16>& class_id) override;
    void set_state_bits(EntryId entry, std::uint32_t bits, std::uint32_t mask) override;
    void set_times(EntryId entry, std::uint64_t created, std::uint64_t modified) override;
    std::shared_ptr<StreamNode> stream(EntryId entry) override;
    void flush() override;
    std::vector<std::string> check(bool strict) override;

    // For streams.
    Backing& backing() { return *backing_; }
    Geometry geometry() const { return geometry_; }
    SectorTable& sectors() { return sectors_; }
    MiniTable& minis() { return minis_; }
    Directory& directory() { return directory_; }
    // Throws where the file is read-only or an earlier flush failed.
    void begin_change();
    // Whether a stream shares sectors with another one; then neither may change.
    bool is_crossed(EntryId entry) const { return crossed_.contains(entry); }
    // Picks `count` sectors to go behind `last` and reserves their bytes; the caller links them.
    // May flush first, to get at sectors in quarantine, so nothing may be half changed.
    Pick take_sectors(Sector last, std::uint64_t count);
    // The same for mini sectors; mini FAT and mini stream have grown to hold them when it returns.
    Pick take_minis(Sector last, std::uint64_t count);
    // Makes a pick of mini sectors part of its chain.
    void link_minis(const Pick& pick);

  private:
    void require_metadata_within_file() const;
    void load_directory();
    void require_entry(EntryId entry) const;
    void require_storage(EntryId entry) const;
    void require_new_name(EntryId storage, std::u16string_view name, EntryId renamed) const;
    EntryId create_entry(EntryId storage, std::u16string_view name, EntryType type);
    std::shared_ptr<ChainedStream> node(EntryId entry);
    void grow_mini_table(std::uint64_t missing);
    void grow_mini_stream(std::uint64_t bytes);
    void write_metadata();
    void write_header(const Header& header);

    std::unique_ptr<Backing> backing_;
    Access access_;
    Header header_; // as it is in the file
    Geometry geometry_;
    SectorTable sectors_;
    MiniTable minis_;
    Directory directory_;
    std::unordered_map<EntryId, std::weak_ptr<ChainedStream>> nodes_;
    std::unordered_set<EntryId> crossed_;
    std::optional<platform::Error> failure_;
};

} // namespace compound_file

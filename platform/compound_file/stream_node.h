// One stream's bytes: a map of where they lie and a read-ahead window. Shared by all handles of the
// stream, so that a resize through one is seen by all.
//
// Invariants: the map covers at least the stream, unless the file was damaged; the window agrees
// with the backing. User data is never held back.
#pragma once

#include "platform/compound_file/chain_map.h"
#include "platform/compound_file/engine.h"

namespace compound_file {

class ChainedStream final : public StreamNode {
  public:
    // Walks the stream's chain. Cost: O(its sectors).
    ChainedStream(Engine& engine, EntryId entry);

    std::uint64_t size() const override { return size_; }
    std::size_t read_at(std::uint64_t offset, std::span<std::uint8_t> out) override;
    void write_at(std::uint64_t offset, std::span<const std::uint8_t> data) override;
    void resize(std::uint64_t size) override;
    std::uint64_t copy_range(StreamNode& source, std::uint64_t from, std::uint64_t to,
                             std::uint64_t count) override;

    // Gives up all sectors; the entry is about to go and the node must not be used any more.
    void abandon();

  private:
    friend class StreamGrowth;

    // Bytes that can be read: fewer than the size where the chain is too short.
    std::uint64_t available() const { return std::min(size_, map_.length()); }
    bool is_small() const { return size_ < kMiniCutoff; }
    Sector first_sector() const;
    Sector last_sector() const; // of the map, mini or ordinary

    std::size_t read_around_window(std::uint64_t offset, std::span<std::uint8_t> out);
    std::size_t read_directly(std::uint64_t offset, std::span<std::uint8_t> out);
    void fill_window(std::uint64_t offset);
    void drop_window() { window_used_ = 0; }

    void begin_change();
    // Writes to bytes that the map covers; `zero` leaves out what a new backing has as zeros
    // anyway.
    void put(std::uint64_t offset, std::span<const std::uint8_t> data);
    void zero(std::uint64_t from, std::uint64_t to, std::uint64_t zero_in_file_from);
    void patch_window(std::uint64_t offset, std::span<const std::uint8_t> data);
    void copy_runs(ChainedStream& source, std::uint64_t from, std::uint64_t to,
                   std::uint64_t count);
    void shrink(std::uint64_t size);
    void shrink_to_mini(std::uint64_t size);
    void release_all();
    void set_size(std::uint64_t size);

    Engine& engine_;
    EntryId entry_;
    std::uint64_t size_ = 0;
    ChainMap map_;
    std::vector<Sector> minis_; // of a small stream
    bool abandoned_ = false;

    bytes::Bytes window_;
    std::uint64_t window_at_ = 0;
    std::size_t window_used_ = 0;
    std::size_t reach_ = 0; // how far the last filling went
};

} // namespace compound_file

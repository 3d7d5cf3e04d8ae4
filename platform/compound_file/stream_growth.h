// A stream that is about to become longer: sectors picked, reserved and mapped, but not linked. The
// caller fills the new bytes and commits; without a commit the stream is as it was before.
#pragma once

#include "platform/compound_file/stream_node.h"

#include <optional>

namespace compound_file {

class StreamGrowth {
  public:
    // Throws Errc::too_large, medium_full or corrupt (for a stream whose chain is too short);
    // nothing has changed then.
    StreamGrowth(ChainedStream& stream, std::uint64_t new_size);
    ~StreamGrowth();
    StreamGrowth(const StreamGrowth&) = delete;
    StreamGrowth& operator=(const StreamGrowth&) = delete;

    // Zeroes what lies between the old size and `offset`.
    void zero_up_to(std::uint64_t offset);
    void commit();

  private:
    void grow_minis();
    void grow_sectors();
    void leave_mini_stream();

    ChainedStream& stream_;
    std::uint64_t new_size_;
    std::uint64_t old_length_;        // of the map
    std::uint64_t zero_in_file_from_; // the backing's size beforehand; what it gains is zero
    Pick pick_;
    bool crosses_ = false;          // from mini sectors to ordinary ones
    std::optional<ChainMap> small_; // the map beforehand, where it crosses
    bool committed_ = false;
};

} // namespace compound_file

// Where the bytes of one stream lie in the file: extents in stream order, adjacent ones merged. The
// extents cover the whole of the stream's sectors, so the map may be longer than the stream.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace compound_file {

class ChainMap {
  public:
    struct Place {
        std::uint64_t file_offset = 0;
        std::uint64_t length = 0; // bytes that follow (or precede, for locate_before) without a gap
    };

    std::uint64_t length() const { return length_; }
    std::size_t extents() const { return extents_.size(); }

    void append(std::uint64_t file_offset, std::uint64_t length);
    // Keeps the first `length` bytes.
    void cut(std::uint64_t length);

    // The place of the byte at `offset`, which is below length(). Cost: O(log extents), O(1) at and
    // just behind the last hit.
    Place locate(std::uint64_t offset) const;
    // The bytes that end at `end` (above 0, at most length()).
    Place locate_before(std::uint64_t end) const;

  private:
    struct Extent {
        std::uint64_t stream_offset;
        std::uint64_t file_offset;
        std::uint64_t length;

        bool has(std::uint64_t offset) const {
            return offset >= stream_offset && offset - stream_offset < length;
        }
    };
    const Extent& find(std::uint64_t offset) const;

    std::vector<Extent> extents_;
    std::uint64_t length_ = 0;
    mutable std::size_t last_hit_ = 0;
};

} // namespace compound_file

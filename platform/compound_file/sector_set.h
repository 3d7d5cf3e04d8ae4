// A set of sector numbers as a bitmap with summary levels above it (64 to 1): membership, insertion
// and removal in O(1), the next member at or above a number in O(log64 of the size). Used for free
// and for changed sectors, so that no search ever scans a table.
#pragma once

#include <cstdint>
#include <vector>

namespace compound_file {

class SectorSet {
  public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    SectorSet() = default;
    explicit SectorSet(std::uint32_t size) { grow(size); }

    // Makes room for the numbers below `size`, at least the present size; new ones are absent.
    void grow(std::uint32_t size);

    std::uint32_t count() const { return count_; }
    bool contains(std::uint32_t number) const {
        return number < size_ && ((levels_[0][number / 64] >> (number % 64)) & 1) != 0;
    }

    // For numbers below the size.
    void insert(std::uint32_t number);
    void erase(std::uint32_t number);
    void clear();

    // The lowest member that is not below `from`, or kNone.
    std::uint32_t next(std::uint32_t from) const;

  private:
    std::uint32_t size_ = 0;
    std::uint32_t count_ = 0;
    std::vector<std::vector<std::uint64_t>> levels_; // bit n of a level: word n below is not 0
};

} // namespace compound_file

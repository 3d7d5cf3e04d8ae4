// By how much each rewritten object changed its size, and where that puts every offset behind it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ppt {

class ShiftTable {
  public:
    // Notes an object that stood at `old_offset` and changed by `size_change` bytes. Objects are
    // noted in ascending order of their old offsets. Throws 8800.
    void add(std::uint32_t old_offset, std::int32_t size_change);

    // The offset plus the size changes of all objects that started before it; an object's own
    // offset is not moved by its change. Logarithmic. Throws 8140 when the result is no stream
    // offset.
    std::uint32_t moved(std::uint32_t offset) const;

  private:
    struct Shift {
        std::uint32_t old_offset = 0;
        std::int64_t total = 0; // of this object's change and all before it
    };
    std::vector<Shift> shifts_;
};

} // namespace ppt

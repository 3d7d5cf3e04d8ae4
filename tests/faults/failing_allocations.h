// Makes one allocation of this program fail, and knows how many there are and how much they hold:
// operator new in all its plain forms, and malloc, calloc and realloc as the program's own objects
// call them (the linker sends these here, see CMakeLists.txt). What shared libraries allocate for
// themselves is not seen.
#pragma once

#include <cstdint>

namespace fault {

// From construction to destruction the allocation with the given number, counted from 0, fails.
// One at a time, on one thread.
class FailingAllocation {
  public:
    explicit FailingAllocation(std::uint64_t number);
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation();

    // Whether there were so many allocations that it came to the failing one.
    bool happened() const;
};

// Blocks that were allocated and not freed.
std::int64_t live_allocations();

// The most bytes that were held at once since construction, beyond those held then; each block
// counts with what the heap needs to keep it.
class HeapPeak {
  public:
    HeapPeak();
    std::uint64_t bytes() const;

  private:
    std::int64_t at_start_;
};

} // namespace fault

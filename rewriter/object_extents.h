// What the objects of the loaded presentation take up. In a sound stream no object, user edit or
// persist directory lies inside another object; where one does, changing its size would leave the
// outer object with a length that is no longer true.
#pragma once

#include "reader/presentation.h"

#include <cstdint>
#include <vector>

namespace ppt {

class ObjectExtents {
  public:
    // Remembers where user edits and persist directories stand; knows no objects yet.
    explicit ObjectExtents(const PptPresentation& loaded);

    // Adds the object at the offset, of which the header is read. Objects are added by ascending
    // offset. One that is longer than the stream takes up nothing.
    void add(PptPresentation& loaded, std::uint32_t offset);

    // Whether an object that was added starts before the offset and reaches over it.
    bool reach_over(std::uint32_t offset) const { return end_ > offset; }

    // Whether a user edit or persist directory stands behind `begin` and before `end`. Logarithmic.
    bool have_list_in(std::uint32_t begin, std::uint32_t end) const;

  private:
    std::uint64_t end_ = 0; // the furthest of all objects
    std::vector<std::uint32_t> lists_;
};

} // namespace ppt

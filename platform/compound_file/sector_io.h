// Reading and writing of metadata sectors with adjacent ones joined into one call.
#pragma once

#include "platform/base/bytes.h"
#include "platform/compound_file/format.h"

#include <functional>
#include <span>
#include <vector>

namespace compound_file {

// A metadata sector to be written: where it lies and what its owner calls it.
struct Placed {
    Sector sector = 0;
    std::uint32_t index = 0;
};

// Reads whole sectors into `out`, which has room for all of them; what lies behind the end of the
// backing keeps the value it has there.
void read_sectors(Backing& backing, Geometry geometry, std::span<const Sector> sectors,
                  std::span<std::uint8_t> out);

// Writes sectors, lowest first; `fill` puts the content of the one with the given index into a span
// of one sector. A failure may leave a part written.
void write_sectors(Backing& backing, Geometry geometry, std::vector<Placed> sectors,
                   const std::function<void(std::uint32_t, std::span<std::uint8_t>)>& fill);

} // namespace compound_file

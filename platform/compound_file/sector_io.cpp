// Joining of adjacent sectors, up to a buffer's worth at a time when writing.
#include "platform/compound_file/sector_io.h"

#include <algorithm>

namespace compound_file {
namespace {

constexpr std::size_t kJoinedBytes = std::size_t{256} * 1024;

} // namespace

void read_sectors(Backing& backing, Geometry geometry, std::span<const Sector> sectors,
                  std::span<std::uint8_t> out) {
    for (std::size_t first = 0; first < sectors.size();) {
        std::size_t end = first + 1;
        while (end < sectors.size() && sectors[end] == sectors[end - 1] + 1) {
            ++end;
        }
        const std::size_t at = first << geometry.shift();
        const std::size_t count = (end - first) << geometry.shift();
        backing.read_at(geometry.offset(sectors[first]), out.subspan(at, count));
        first = end;
    }
}

void write_sectors(Backing& backing, Geometry geometry, std::vector<Placed> sectors,
                   const std::function<void(std::uint32_t, std::span<std::uint8_t>)>& fill) {
    std::sort(sectors.begin(), sectors.end(),
              [](const Placed& a, const Placed& b) { return a.sector < b.sector; });
    const std::size_t most = kJoinedBytes >> geometry.shift();
    bytes::Bytes buffer;
    for (std::size_t first = 0; first < sectors.size();) {
        std::size_t end = first + 1;
        while (end < sectors.size() && end - first < most &&
               sectors[end].sector == sectors[end - 1].sector + 1) {
            ++end;
        }
        buffer.assign((end - first) << geometry.shift(), 0);
        for (std::size_t i = first; i < end; ++i) {
            fill(sectors[i].index, std::span(buffer).subspan((i - first) << geometry.shift(),
                                                             geometry.sector_bytes()));
        }
        backing.write_at(geometry.offset(sectors[first].sector), buffer);
        first = end;
    }
}

} // namespace compound_file

// Handing out sectors and mini sectors: what must grow first grows here.
#include "platform/compound_file/engine.h"

#include <algorithm>

namespace compound_file {
namespace {

using platform::Errc;
using platform::Error;

// Whether a flush would bring sectors out of quarantine that are needed now.
bool needs_quarantine(const ChainTable& table, Sector last, std::uint64_t count) {
    return table.has_quarantine() &&
           std::uint64_t{table.free_count()} + table.cut_behind(last) < count;
}

void require_countable(std::uint64_t count) {
    if (count > kHighestSector) {
        throw Error(Errc::too_large, std::to_string(count) + " sectors wanted, there are " +
                                         std::to_string(kHighestSector));
    }
}

} // namespace

Pick Engine::take_sectors(Sector last, std::uint64_t count) {
    require_countable(count);
    if (needs_quarantine(sectors_, last, count)) {
        flush();
    }
    Pick pick = sectors_.pick(last, static_cast<std::uint32_t>(count));
    if (const Sector end = pick.end(); end > 0) {
        backing_->reserve(geometry_.offset(end));
    }
    return pick;
}

Pick Engine::take_minis(Sector last, std::uint64_t count) {
    require_countable(count);
    if (!minis_.whole()) {
        throw Error(Errc::corrupt, "the mini stream is shorter than it says and cannot grow");
    }
    if (needs_quarantine(minis_, last, count)) {
        flush();
    }
    const std::uint64_t there = std::uint64_t{minis_.free_count()} + minis_.cut_behind(last);
    if (count > there) {
        grow_mini_table(count - there);
    }
    Pick pick = minis_.pick(last, static_cast<std::uint32_t>(count));
    grow_mini_stream(std::uint64_t{pick.end()} * kMiniBytes);
    return pick;
}

void Engine::grow_mini_table(std::uint64_t missing) {
    const std::uint64_t links = geometry_.links_per_sector();
    const Pick pick = take_sectors(minis_.last_place(), (missing + links - 1) / links);
    sectors_.link(pick);
    minis_.add_places(pick);
}

void Engine::grow_mini_stream(std::uint64_t bytes) {
    if (bytes <= minis_.room()) {
        return;
    }
    const Pick pick =
        take_sectors(minis_.last_sector(), geometry_.sectors_for(bytes - minis_.room()));
    sectors_.link(pick);
    minis_.add_room(pick);
    directory_.set_stream(kRoot, minis_.first_sector(), minis_.room());
}

void Engine::link_minis(const Pick& pick) {
    minis_.link(pick);
    const std::uint64_t reached = std::uint64_t{pick.end()} * kMiniBytes;
    directory_.set_stream(kRoot, minis_.first_sector(),
                          std::max(directory_.at(kRoot).size, reached));
}

} // namespace compound_file

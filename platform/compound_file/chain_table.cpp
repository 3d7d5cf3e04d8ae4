// Chains, free sectors and the quarantine over a flat array of links.
#include "platform/compound_file/chain_table.h"

#include <algorithm>

namespace compound_file {

void Pick::add(Sector sector) {
    if (!runs.empty() && runs.back().first + runs.back().count == sector) {
        ++runs.back().count;
    } else {
        runs.push_back({sector, 1});
    }
}

Sector Pick::end() const {
    Sector highest_end = 0;
    for (const Run& run : runs) {
        highest_end = std::max(highest_end, run.first + run.count);
    }
    if (!fat_sectors.empty()) {
        highest_end = std::max(highest_end, fat_sectors.back() + 1);
    }
    if (!difat_sectors.empty()) {
        highest_end = std::max(highest_end, difat_sectors.back() + 1);
    }
    return highest_end;
}

std::uint32_t ChainTable::chain_length(Sector first, std::uint64_t limit) const {
    // Brent's search for a cycle: a checkpoint moves ahead in steps of growing powers of two. One
    // within the first n sectors is found after three times as many.
    const std::uint64_t bound = std::min<std::uint64_t>(limit, present_);
    const std::uint64_t longest_search = 3 * bound;
    Sector at = first;
    Sector checkpoint = first;
    std::uint64_t since_checkpoint = 0;
    std::uint64_t power = 1;
    std::uint64_t length = 0;
    while (length < longest_search && holds(at)) {
        ++length;
        at = links_[at];
        ++since_checkpoint;
        if (at == checkpoint) {
            // A cycle of since_checkpoint sectors: it begins where two walkers that far apart meet.
            Sector ahead = first;
            for (std::uint64_t i = 0; i < since_checkpoint; ++i) {
                ahead = links_[ahead];
            }
            std::uint64_t before_cycle = 0;
            for (Sector behind = first; behind != ahead; ++before_cycle) {
                behind = links_[behind];
                ahead = links_[ahead];
            }
            return static_cast<std::uint32_t>(std::min(bound, before_cycle + since_checkpoint));
        }
        if (since_checkpoint == power) {
            checkpoint = at;
            power *= 2;
            since_checkpoint = 0;
        }
    }
    return static_cast<std::uint32_t>(std::min(bound, length));
}

std::uint32_t ChainTable::cut_behind(Sector last) const {
    const auto found = cuts_.find(last);
    return found == cuts_.end() ? 0 : found->second;
}

void ChainTable::cut(Sector old_last, Sector new_last, std::uint32_t removed) {
    const std::uint32_t waiting = cut_behind(old_last);
    cuts_.erase(old_last);
    cuts_[new_last] = waiting + removed;
}

void ChainTable::release(Sector first, Sector last, std::uint32_t count) {
    released_.push_back({first, count + cut_behind(last)});
    cuts_.erase(last);
}

void ChainTable::free_sectors(Sector first, std::uint32_t count) {
    Sector at = first;
    for (std::uint32_t i = 0; i < count; ++i) {
        const Sector following = links_[at];
        set(at, may_give_out(at) ? kFreeSector : kEndOfChain);
        if (may_give_out(at)) {
            free_.insert(at);
        }
        at = following;
    }
}

void ChainTable::apply_quarantine() {
    for (const auto& [last, count] : cuts_) {
        const Sector tail = links_[last];
        set(last, kEndOfChain);
        free_sectors(tail, count);
    }
    cuts_.clear();
    for (const Released& chain : released_) {
        free_sectors(chain.first, chain.count);
    }
    released_.clear();
}

void ChainTable::take_out(Sector sector, Sector mark) {
    if (links_[sector] == kFreeSector) {
        set(sector, mark);
        free_.erase(sector);
    }
}

void ChainTable::free_absent() {
    for (Sector sector = present_; sector < size(); ++sector) {
        links_[sector] = kFreeSector;
        if (may_give_out(sector)) {
            free_.insert(sector);
        }
    }
}

void ChainTable::end_if_broken(Sector sector) {
    const Sector following = links_[sector];
    if (following == kFreeSector || (following <= kHighestSector && !holds(following))) {
        set(sector, kEndOfChain);
        free_.erase(sector);
    }
}

void ChainTable::pick_own_tail(Pick& pick, std::uint32_t count) const {
    pick.reclaimed = std::min(count, cut_behind(pick.last));
    Sector at = pick.last;
    for (std::uint32_t i = 0; i < pick.reclaimed; ++i) {
        at = links_[at];
        pick.add(at);
    }
}

Pick ChainTable::pick_free(Sector last, std::uint32_t count) const {
    Pick pick;
    pick.last = last;
    pick_own_tail(pick, count);
    pick.missing = count - pick.reclaimed;
    const Sector tail =
        pick.runs.empty() ? last : pick.runs.back().first + pick.runs.back().count - 1;
    const bool goes_on = tail != kEndOfChain && free_.contains(tail + 1);
    const Sector start = goes_on ? tail + 1 : free_.next(0);
    for (Sector at = start; pick.missing > 0 && at != SectorSet::kNone; at = free_.next(at + 1)) {
        pick.add(at);
        --pick.missing;
    }
    if (!goes_on) {
        return pick;
    }
    for (Sector at = free_.next(0); pick.missing > 0 && at < start; at = free_.next(at + 1)) {
        pick.add(at);
        --pick.missing;
    }
    return pick;
}

void ChainTable::link_picked(const Pick& pick) {
    const std::uint32_t waiting = cut_behind(pick.last);
    Sector at = pick.last;
    std::uint32_t index = 0;
    for (const Run& run : pick.runs) {
        for (Sector sector = run.first; sector < run.first + run.count; ++sector, ++index) {
            if (index >= pick.reclaimed) {
                free_.erase(sector);
                if (at != kEndOfChain) {
                    set(at, sector);
                }
            }
            at = sector;
        }
    }
    if (waiting > 0) {
        cuts_.erase(pick.last);
    }
    if (waiting > pick.reclaimed) {
        cuts_[at] = waiting - pick.reclaimed;
    } else if (at != kEndOfChain && links_[at] != kEndOfChain) {
        set(at, kEndOfChain);
    }
}

void ChainTable::set(Sector sector, Sector value) {
    links_[sector] = value;
    dirty_.insert(sector / geometry_.links_per_sector());
}

void ChainTable::load_links(bytes::View raw) {
    const std::size_t before = links_.size();
    links_.resize(before + raw.size() / kLinkBytes);
    free_.grow(size());
    dirty_.grow(size() / geometry_.links_per_sector());
    for (std::size_t i = before; i < links_.size(); ++i) {
        links_[i] = bytes::load_u32(raw, (i - before) * kLinkBytes);
        if (links_[i] == kFreeSector && may_give_out(static_cast<Sector>(i))) {
            free_.insert(static_cast<Sector>(i));
        }
    }
}

void ChainTable::add_free_links(std::uint32_t count) {
    const Sector before = size();
    links_.resize(links_.size() + count, kFreeSector);
    free_.grow(size());
    dirty_.grow(size() / geometry_.links_per_sector());
    for (Sector sector = before; sector < size(); ++sector) {
        if (may_give_out(sector)) {
            free_.insert(sector);
        }
    }
    for (std::uint32_t i = before / geometry_.links_per_sector();
         i < size() / geometry_.links_per_sector(); ++i) {
        dirty_.insert(i);
    }
}

void ChainTable::store_links(std::uint32_t table_sector, std::span<std::uint8_t> out) const {
    const std::size_t first = std::size_t{table_sector} * geometry_.links_per_sector();
    for (std::uint32_t i = 0; i < geometry_.links_per_sector(); ++i) {
        bytes::store_u32(out, std::size_t{i} * kLinkBytes, links_[first + i]);
    }
}

} // namespace compound_file

// The summary bitmap: a level is kept for as long as the one below has more than one word.
#include "platform/compound_file/sector_set.h"

#include <algorithm>
#include <bit>

namespace compound_file {

void SectorSet::grow(std::uint32_t size) {
    size_ = std::max(size_, size);
    if (levels_.empty()) {
        levels_.emplace_back();
    }
    levels_[0].resize((std::size_t{size_} + 63) / 64);
    for (std::size_t level = 0; levels_[level].size() > 1; ++level) {
        const std::size_t words = (levels_[level].size() + 63) / 64;
        if (level + 1 < levels_.size()) {
            levels_[level + 1].resize(words);
            continue;
        }
        std::vector<std::uint64_t> summary(words);
        for (std::size_t i = 0; i < levels_[level].size(); ++i) {
            summary[i / 64] |= std::uint64_t{levels_[level][i] != 0} << (i % 64);
        }
        levels_.push_back(std::move(summary));
    }
}

void SectorSet::insert(std::uint32_t number) {
    if (contains(number)) {
        return;
    }
    ++count_;
    std::size_t at = number;
    for (auto& level : levels_) {
        std::uint64_t& word = level[at / 64];
        const bool known_above = word != 0;
        word |= std::uint64_t{1} << (at % 64);
        if (known_above) {
            return;
        }
        at /= 64;
    }
}

void SectorSet::erase(std::uint32_t number) {
    if (!contains(number)) {
        return;
    }
    --count_;
    std::size_t at = number;
    for (auto& level : levels_) {
        std::uint64_t& word = level[at / 64];
        word &= ~(std::uint64_t{1} << (at % 64));
        if (word != 0) {
            return;
        }
        at /= 64;
    }
}

void SectorSet::clear() {
    for (std::uint32_t member = next(0); member != kNone; member = next(member)) {
        erase(member);
    }
}

std::uint32_t SectorSet::next(std::uint32_t from) const {
    std::size_t at = from;
    for (std::size_t level = 0; level < levels_.size(); ++level) {
        if (at / 64 >= levels_[level].size()) {
            return kNone;
        }
        const std::uint64_t word = levels_[level][at / 64] >> (at % 64);
        if (word == 0) {
            at = at / 64 + 1;
            continue;
        }
        at += static_cast<std::size_t>(std::countr_zero(word));
        while (level-- > 0) {
            at = at * 64 + static_cast<std::size_t>(std::countr_zero(levels_[level][at]));
        }
        return static_cast<std::uint32_t>(at);
    }
    return kNone;
}

} // namespace compound_file

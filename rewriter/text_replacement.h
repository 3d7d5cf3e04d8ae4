// The stretches of one text that are replaced, and where every other place of the text moves.
//
// Replacements stand in the order of the text and do not overlap. Places are counted in characters
// and lie between characters; a place behind the text moves as its end does.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace ppt {

struct TextReplacement {
    std::uint32_t old_start = 0;
    std::uint32_t old_end = 0; // behind the last character
    std::uint32_t new_start = 0;
    std::uint32_t new_end = 0;
};

class TextReplacements {
  public:
    // `replacement` starts at or behind the end of the one before it.
    void add(const TextReplacement& replacement) { all_.push_back(replacement); }

    std::span<const TextReplacement> all() const { return all_; }

    // Where a range that starts, or ends, at `place` of the old text starts or ends in the new one.
    // What begins where a replaced stretch begins starts with the new words, and what ends where it
    // ends ends with them. Cost: logarithmic.
    std::uint32_t moved_start(std::uint32_t place) const;
    std::uint32_t moved_end(std::uint32_t place) const;

  private:
    std::vector<TextReplacement> all_;
};

} // namespace ppt

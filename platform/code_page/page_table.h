// The table of one single-byte or double-byte code page, both ways.
//
// Invariants: bytes below 0x80 are ASCII; 0 stands for "undefined" everywhere except at index 0. A
// table never changes after it was built and lives as long as the process.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace code_page {

class Converter;

class PageTable {
  public:
    // The table of the page, built at the first call for it; null when the page is not known or the
    // system cannot convert it.
    static const PageTable* find(std::uint32_t page);

    PageTable(); // knows nothing yet

    // The unit for a single byte or for a pair; 0 when undefined (or for the byte 0).
    char16_t single(std::uint8_t byte) const { return singles_[byte]; }
    char16_t pair(std::uint8_t lead, std::uint8_t trail) const {
        return pairs_.empty() ? char16_t{0} : pairs_[static_cast<std::size_t>(lead) << 8 | trail];
    }

    // One byte, or two with the first in the high half; 0 when the page lacks the unit.
    std::uint16_t code(char16_t unit) const { return codes_[unit]; }

  private:
    static std::unique_ptr<const PageTable> build(std::uint32_t page);
    void fill_singles(std::uint32_t page, const Converter& converter);
    void fill_pairs(std::uint32_t page, const Converter& converter);

    std::array<char16_t, 256> singles_{};
    std::vector<char16_t> pairs_;      // empty in a single-byte page
    std::vector<std::uint16_t> codes_; // one per UTF-16 unit
};

} // namespace code_page

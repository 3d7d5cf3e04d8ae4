// The system's own conversion of single characters of one code page, from which the tables are
// built: iconv, or Windows itself.
#pragma once

#include <cstdint>

namespace code_page {

class Converter {
  public:
    explicit Converter(std::uint32_t page);
    ~Converter();
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    // Whether the system knows the page.
    bool usable() const;

    // The unit for a single byte or for a pair of bytes; 0 for what is no character of the page or
    // not a single unit.
    char16_t unit(std::uint8_t byte) const;
    char16_t unit(std::uint8_t lead, std::uint8_t trail) const;

    // The pair of bytes that the system writes for a unit, the first in the high half; 0 for none.
    std::uint16_t pair_for(char16_t unit) const;

  private:
#if defined(_WIN32)
    std::uint32_t page_;
#else
    void* to_utf16_;
    void* from_utf16_;
#endif
};

} // namespace code_page

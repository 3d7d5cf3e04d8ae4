// What a Windows program or library shows to others and takes from others: its export and import
// tables, for 32-bit and 64-bit files.
#pragma once

#include "platform/base/bytes.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace pe {

struct Import {
    std::string dll;                // as the file spells it
    std::vector<std::string> names; // "#7" for a function that is taken by its number
};

struct Tables {
    bool is_64_bit = false;
    std::vector<std::string> exports;
    std::vector<Import> imports; // delayed ones as well
};

// The file is not of this format or its tables do not lie in it.
class FormatError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Throws FormatError. A function that is exported without a name counts as a fault too, since hosts
// bind by name.
Tables read_tables(bytes::View file);

} // namespace pe

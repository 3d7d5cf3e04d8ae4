// Compares the tables of a built file with what it may show and take.
#pragma once

#include "tests/windows/pe_tables.h"

#include <string>
#include <vector>

namespace pe {

struct Expectation {
    bool is_64_bit = false;
    std::vector<std::string> exports;
    // Libraries of which exactly the given functions are taken. Of the system's libraries and the C
    // run-time a file may take what it likes, of others nothing.
    std::vector<Import> imports;
};

// One sentence for every difference, none when all is as expected. Names of libraries count without
// regard to case, as the system looks for them; those of functions with it.
std::vector<std::string> differences(const Tables& tables, const Expectation& expected);

} // namespace pe

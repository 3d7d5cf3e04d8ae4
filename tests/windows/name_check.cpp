#include "tests/windows/name_check.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

namespace pe {

namespace {

constexpr std::array<std::string_view, 5> kSystemLibraries = {
    "kernel32.dll", "ole32.dll", "advapi32.dll", "mpr.dll", "msvcrt.dll"};

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return text;
}

void compare(std::vector<std::string> found, std::vector<std::string> expected,
             const std::string& what, std::vector<std::string>& faults) {
    std::sort(found.begin(), found.end());
    std::sort(expected.begin(), expected.end());
    std::vector<std::string> names;
    std::set_difference(found.begin(), found.end(), expected.begin(), expected.end(),
                        std::back_inserter(names));
    for (const std::string& name : names) {
        faults.push_back(what + " " + name + ", which is not in the list");
    }
    names.clear();
    std::set_difference(expected.begin(), expected.end(), found.begin(), found.end(),
                        std::back_inserter(names));
    for (const std::string& name : names) {
        faults.push_back("not " + what + " " + name + ", which is in the list");
    }
}

// All that is taken of the library, from however many entries of the table.
std::vector<std::string> names_of(const Tables& tables, const std::string& library) {
    std::vector<std::string> names;
    for (const Import& import : tables.imports) {
        if (lower(import.dll) == library) {
            names.insert(names.end(), import.names.begin(), import.names.end());
        }
    }
    return names;
}

} // namespace

std::vector<std::string> differences(const Tables& tables, const Expectation& expected) {
    std::vector<std::string> faults;
    if (tables.is_64_bit != expected.is_64_bit) {
        faults.push_back(tables.is_64_bit ? "it is a 64-bit file" : "it is a 32-bit file");
    }
    compare(tables.exports, expected.exports, "exports", faults);
    std::vector<std::string> allowed(kSystemLibraries.begin(), kSystemLibraries.end());
    for (const Import& import : expected.imports) {
        const std::string library = lower(import.dll);
        compare(names_of(tables, library), import.names, "imports from " + import.dll, faults);
        allowed.push_back(library);
    }
    for (const Import& import : tables.imports) {
        if (std::find(allowed.begin(), allowed.end(), lower(import.dll)) == allowed.end()) {
            faults.push_back("imports from " + import.dll + ", which it should not need");
        }
    }
    return faults;
}

} // namespace pe

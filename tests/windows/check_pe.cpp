// check_pe 32-bit|64-bit FILE [exports=LIST] [LIBRARY=LIST]...: fails unless the Windows program or
// library exports exactly the functions of its list (none without one), imports exactly those
// listed from the libraries named, and needs no other library but the system's. A list has one name
// a line.
#include "tests/windows/name_check.h"

#include <fstream>
#include <iostream>
#include <iterator>
#include <span>
#include <string_view>

namespace {

std::ifstream open(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error(path + " cannot be opened");
    }
    return file;
}

std::vector<std::string> read_list(const std::string& path) {
    std::ifstream file = open(path);
    std::vector<std::string> names;
    for (std::string line; std::getline(file, line);) {
        names.push_back(line);
    }
    return names;
}

bytes::Bytes read_file(const std::string& path) {
    std::ifstream file = open(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

pe::Expectation expectation(std::span<char*> arguments) {
    pe::Expectation expected;
    for (const std::string argument : arguments) {
        const std::size_t equals = argument.find('=');
        if (equals == std::string::npos) {
            throw std::runtime_error("'" + argument + "' is not of the form LIBRARY=LIST");
        }
        const std::string name = argument.substr(0, equals);
        const std::vector<std::string> list = read_list(argument.substr(equals + 1));
        if (name == "exports") {
            expected.exports = list;
        } else {
            expected.imports.push_back({name, list});
        }
    }
    return expected;
}

int check(const std::string& path, const pe::Expectation& expected) {
    const pe::Tables tables = pe::read_tables(read_file(path));
    const std::vector<std::string> faults = pe::differences(tables, expected);
    for (const std::string& fault : faults) {
        std::cerr << path << ": " << fault << '\n';
    }
    if (faults.empty()) {
        std::cout << path << ": " << tables.exports.size() << " exports, imports from "
                  << tables.imports.size() << " libraries, as listed\n";
    }
    return faults.empty() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    const std::span<char*> arguments(argv, static_cast<std::size_t>(argc));
    const std::string_view width = argc > 2 ? argv[1] : "";
    if (width != "32-bit" && width != "64-bit") {
        std::cerr << "usage: check_pe 32-bit|64-bit FILE [exports=LIST] [LIBRARY=LIST]...\n";
        return 2;
    }
    try {
        pe::Expectation expected = expectation(arguments.subspan(3));
        expected.is_64_bit = width == "64-bit";
        return check(argv[2], expected);
    } catch (const std::exception& error) {
        std::cerr << "check_pe: " << argv[2] << ": " << error.what() << '\n';
        return 1;
    }
}

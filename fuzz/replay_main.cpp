// Runs a target once over each file of the folders that are named. The target ends the process when
// something is wrong.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void replay(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> data{std::istreambuf_iterator<char>(file), {}};
    std::printf("%s\n", path.c_str());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(data.data()), data.size());
}

// In the order of their names. Throws when there is no such folder or nothing in it: a name that
// was misspelt must not pass for a test.
std::vector<std::filesystem::path> files_in(const char* folder) {
    std::vector<std::filesystem::path> paths;
    std::copy(std::filesystem::directory_iterator(folder), {}, std::back_inserter(paths));
    if (paths.empty()) {
        throw std::runtime_error(std::string(folder) + ": nothing to replay");
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

} // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::fprintf(stderr, "usage: %s FOLDER...\n", arguments[0]);
        return 2;
    }
    try {
        for (int i = 1; i < count; ++i) {
            for (const std::filesystem::path& path : files_in(arguments[i])) {
                replay(path);
            }
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}

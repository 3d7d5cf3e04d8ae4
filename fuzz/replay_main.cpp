// Runs a target once over each file of the folders that are named, in the order of their names. The
// target ends the process when something is wrong.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
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

} // namespace

int main(int count, char** arguments) {
    std::vector<std::filesystem::path> paths;
    for (int i = 1; i < count; ++i) {
        if (std::filesystem::exists(arguments[i])) {
            std::copy(std::filesystem::directory_iterator(arguments[i]), {},
                      std::back_inserter(paths));
        }
    }
    std::sort(paths.begin(), paths.end());
    for (const std::filesystem::path& path : paths) {
        replay(path);
    }
}

// Writes the inputs that fuzzing starts from, a folder for each target: what the builders of the
// tests make, and the presentations that are named.
//
//     make_fuzz_seeds FOLDER [PRESENTATION...]
#include "fuzz/seeds/seeds.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

bytes::Bytes content_of(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::fprintf(stderr, "usage: make_fuzz_seeds FOLDER [PRESENTATION...]\n");
        return 2;
    }
    try {
        const fuzz::Seeds seeds(arguments[1]);
        fuzz::add_deck_seeds(seeds);
        fuzz::add_engine_seeds(seeds);
        for (int i = 2; i < count; ++i) {
            const std::filesystem::path path = arguments[i];
            fuzz::add_presentation(seeds, path.stem().string(), content_of(path));
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make_fuzz_seeds: %s\n", error.what());
        return 1;
    }
}

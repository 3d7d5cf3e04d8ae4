// A folder that is made for a test.
#pragma once

#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>

// Creates an empty folder whose name begins with `name`; whoever asks for it removes it.
inline std::filesystem::path make_temporary_folder(const std::string& name) {
    constexpr int kTries = 100;
    std::random_device random;
    for (int tries = 0; tries < kTries; ++tries) {
        const std::filesystem::path folder =
            std::filesystem::temp_directory_path() / (name + '-' + std::to_string(random()));
        if (std::filesystem::create_directory(folder)) {
            return folder;
        }
    }
    throw std::runtime_error("no folder " + name);
}

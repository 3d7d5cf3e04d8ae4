// A folder that is made for a test.
#pragma once

#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>

// Removes what is there, also what is read-only, as copies of read-only files are on Windows. A
// drive is only emptied.
inline void remove_folder(const std::filesystem::path& folder) {
    std::error_code ignored;
#if defined(_WIN32)
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, ignored)) {
        std::filesystem::permissions(entry.path(), std::filesystem::perms::owner_write,
                                     std::filesystem::perm_options::add, ignored);
    }
    if (folder == folder.root_path()) {
        for (const auto& entry : std::filesystem::directory_iterator(folder, ignored)) {
            std::filesystem::remove_all(entry.path(), ignored);
        }
        return;
    }
#endif
    std::filesystem::remove_all(folder, ignored);
}

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

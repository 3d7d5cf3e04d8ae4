#include "fuzz/support/memory_folder.h"

#include "fuzz/support/target.h"

#include <fstream>
#include <iterator>
#include <unistd.h>

namespace fuzz {

namespace {

std::filesystem::path place() {
    const std::filesystem::path memory = "/dev/shm";
    return std::filesystem::exists(memory) ? memory : std::filesystem::temp_directory_path();
}

} // namespace

MemoryFolder::MemoryFolder()
    : folder_(place() / ("ppt-fuzz-" + std::to_string(getpid()))) {
    std::filesystem::create_directories(folder_);
}

MemoryFolder::~MemoryFolder() {
    std::error_code ignored; // nobody is left to be told
    std::filesystem::remove_all(folder_, ignored);
}

void MemoryFolder::write(const char* name, bytes::View data) const {
    std::ofstream file(folder_ / name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(data.data()),
               static_cast<std::streamsize>(data.size()));
    file.close();
    require(!file.fail(), "the input's file can be written");
}

bytes::Bytes MemoryFolder::read(const char* name) const {
    std::ifstream file(folder_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace fuzz

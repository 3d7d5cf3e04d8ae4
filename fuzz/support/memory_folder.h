// A folder for the files of one process, in memory where the machine has such a place, since a
// target writes a file for every input. It goes when the process ends in order.
#pragma once

#include "platform/base/bytes.h"

#include <filesystem>
#include <string>

namespace fuzz {

class MemoryFolder {
  public:
    MemoryFolder();
    MemoryFolder(const MemoryFolder&) = delete;
    MemoryFolder& operator=(const MemoryFolder&) = delete;
    ~MemoryFolder();

    std::string path(const char* name) const { return (folder_ / name).string(); }

    // Writes or replaces the file; reads a whole one.
    void write(const char* name, bytes::View data) const;
    bytes::Bytes read(const char* name) const;

  private:
    std::filesystem::path folder_;
};

} // namespace fuzz

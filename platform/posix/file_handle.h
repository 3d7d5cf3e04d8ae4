// An open file descriptor and its owner, and the locks that stand for Windows' share modes: shared
// for reading, exclusive for writing, on the whole file, held until the descriptor is closed.
#pragma once

#include <string>
#include <utility>

namespace platform {

class FileHandle {
  public:
    FileHandle() = default;

    // As open(2) with O_CLOEXEC; the handle is not open when that failed (errno says why).
    FileHandle(const std::string& native_path, int flags, unsigned mode = 0);
    FileHandle(FileHandle&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileHandle& operator=(FileHandle&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~FileHandle() { close(); }

    bool is_open() const { return descriptor_ >= 0; }
    int descriptor() const { return descriptor_; }

    enum class Lock { shared, exclusive };

    // Tries once; false when another open of the file, by this process or another, is in the way.
    // True also where the file system knows no locks.
    bool lock(Lock kind) const;

    // False when what was written did not reach the file (errno says why).
    bool close();

  private:
    int descriptor_ = -1;
};

} // namespace platform

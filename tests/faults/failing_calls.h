// Makes system calls of this program fail, as the program's own objects make them (the linker sends
// these here, see CMakeLists.txt).
#pragma once

#include <cstdint>
#include <functional>

namespace fault {

enum class Calls {
    reads,  // pread
    locks,  // fcntl
    writes, // write, pwrite, ftruncate, fallocate, copy_file_range, fdatasync and close
};

enum class Failure {
    once,
    from_then_on,
};

// From construction to destruction the call with the given number, counted from 0, fails with
// `error`, an errno value. A read or a write moves half of its bytes first, as at the end of a
// disk: then it is the call for the rest that fails. A file whose close fails is closed. One at a
// time, on one thread.
class FailingCall {
  public:
    FailingCall(Calls calls, std::uint64_t number, int error, Failure failure);
    FailingCall(const FailingCall&) = delete;
    FailingCall& operator=(const FailingCall&) = delete;
    ~FailingCall();

    // Whether there were so many calls that it came to the failing one.
    bool happened() const;
};

// Something that happens right before the first lock is taken. It takes none itself.
class BeforeTheFirstLock {
  public:
    explicit BeforeTheFirstLock(std::function<void()> action);
    BeforeTheFirstLock(const BeforeTheFirstLock&) = delete;
    BeforeTheFirstLock& operator=(const BeforeTheFirstLock&) = delete;
    ~BeforeTheFirstLock();
};

// For its lifetime the kernel copies nothing between files, so that it goes through a buffer.
class NoKernelCopies {
  public:
    NoKernelCopies();
    NoKernelCopies(const NoKernelCopies&) = delete;
    NoKernelCopies& operator=(const NoKernelCopies&) = delete;
    ~NoKernelCopies();
};

} // namespace fault

#include "tests/faults/failing_calls.h"

#include <cerrno>
#include <cstddef>
#include <limits>
#include <sys/types.h>
#include <utility>

extern "C" {
// The linker's names for the C library's functions.
ssize_t __real_pread(int file, void* to, std::size_t size, off_t offset);
ssize_t __real_write(int file, const void* from, std::size_t size);
ssize_t __real_pwrite(int file, const void* from, std::size_t size, off_t offset);
int __real_ftruncate(int file, off_t size);
int __real_fallocate(int file, int mode, off_t offset, off_t size);
ssize_t __real_copy_file_range(int from, off_t* from_offset, int to, off_t* to_offset,
                               std::size_t size, unsigned flags);
int __real_fcntl(int file, int command, void* lock);
int __real_fdatasync(int file);
int __real_close(int file);
}

namespace fault {

namespace {

constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

std::uint64_t left_until_failure = kNever;
Calls failing_calls = Calls::writes;
int failing_with = 0;
Failure failing = Failure::once;
bool failed = false;
bool kernel_copies = true;
std::function<void()> before_the_first_lock;

bool fails(Calls calls) {
    if (calls != failing_calls || left_until_failure == kNever) {
        return false;
    }
    if (left_until_failure > 0) {
        --left_until_failure;
        return false;
    }
    left_until_failure = failing == Failure::once ? kNever : 0;
    failed = true;
    errno = failing_with;
    return true;
}

// `call` gets the number of bytes that it may move.
template <class Call>
ssize_t transfer(Calls calls, std::size_t size, Call call) {
    const bool falls_short = calls == failing_calls && left_until_failure == 0 && !failed;
    if (falls_short && size > 1) {
        failed = true;
        return call(size / 2);
    }
    return fails(calls) ? -1 : call(size);
}

} // namespace

FailingCall::FailingCall(Calls calls, std::uint64_t number, int error, Failure failure) {
    failed = false;
    failing_calls = calls;
    failing_with = error;
    failing = failure;
    left_until_failure = number;
}

FailingCall::~FailingCall() {
    left_until_failure = kNever;
}

bool FailingCall::happened() const {
    return failed;
}

BeforeTheFirstLock::BeforeTheFirstLock(std::function<void()> action) {
    before_the_first_lock = std::move(action);
}

BeforeTheFirstLock::~BeforeTheFirstLock() {
    before_the_first_lock = nullptr;
}

NoKernelCopies::NoKernelCopies() {
    kernel_copies = false;
}

NoKernelCopies::~NoKernelCopies() {
    kernel_copies = true;
}

} // namespace fault

// What the linker puts in their place.
extern "C" {

ssize_t __wrap_pread(int file, void* to, std::size_t size, off_t offset) {
    return fault::transfer(fault::Calls::reads, size,
                           [&](std::size_t part) { return __real_pread(file, to, part, offset); });
}

ssize_t __wrap_write(int file, const void* from, std::size_t size) {
    return fault::transfer(fault::Calls::writes, size,
                           [&](std::size_t part) { return __real_write(file, from, part); });
}

ssize_t __wrap_pwrite(int file, const void* from, std::size_t size, off_t offset) {
    return fault::transfer(fault::Calls::writes, size, [&](std::size_t part) {
        return __real_pwrite(file, from, part, offset);
    });
}

int __wrap_ftruncate(int file, off_t size) {
    return fault::fails(fault::Calls::writes) ? -1 : __real_ftruncate(file, size);
}

int __wrap_fallocate(int file, int mode, off_t offset, off_t size) {
    return fault::fails(fault::Calls::writes) ? -1 : __real_fallocate(file, mode, offset, size);
}

ssize_t __wrap_copy_file_range(int from, off_t* from_offset, int to, off_t* to_offset,
                               std::size_t size, unsigned flags) {
    if (!fault::kernel_copies) {
        errno = EXDEV;
        return -1;
    }
    return fault::fails(fault::Calls::writes)
               ? -1
               : __real_copy_file_range(from, from_offset, to, to_offset, size, flags);
}

int __wrap_fcntl(int file, int command, void* lock) {
    if (const auto action = std::exchange(fault::before_the_first_lock, nullptr)) {
        action();
    }
    return fault::fails(fault::Calls::locks) ? -1 : __real_fcntl(file, command, lock);
}

int __wrap_fdatasync(int file) {
    return fault::fails(fault::Calls::writes) ? -1 : __real_fdatasync(file);
}

int __wrap_close(int file) {
    const bool failing = fault::fails(fault::Calls::writes);
    const int result = __real_close(file);
    if (failing) {
        errno = fault::failing_with;
    }
    return failing ? -1 : result;
}

} // extern "C"

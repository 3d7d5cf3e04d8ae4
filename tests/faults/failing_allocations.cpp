#include "tests/faults/failing_allocations.h"

#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>

extern "C" {
// The linker's names for the C library's functions and for what replaces them.
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_realloc(void* block, std::size_t size);
void __wrap_free(void* block);
}

namespace fault {

namespace {

constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

std::uint64_t left_until_failure = kNever;
bool failed = false;
std::int64_t live = 0;
std::int64_t live_bytes = 0;
std::int64_t most_bytes = 0;

std::int64_t held_by(void* block) {
    constexpr std::size_t kHeader = 8;
    return static_cast<std::int64_t>(malloc_usable_size(block) + kHeader);
}

void add_bytes(std::int64_t bytes) {
    live_bytes += bytes;
    most_bytes = std::max(most_bytes, live_bytes);
}

bool is_failing_one() {
    if (left_until_failure == kNever || left_until_failure-- > 0) {
        return false;
    }
    left_until_failure = kNever;
    failed = true;
    return true;
}

void* counted(void* block) {
    if (block != nullptr) {
        ++live;
        add_bytes(held_by(block));
    }
    return block;
}

void* allocate(std::size_t size) {
    return is_failing_one() ? nullptr : counted(__real_malloc(size == 0 ? 1 : size));
}

void* allocate_or_throw(std::size_t size) {
    void* const block = allocate(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void release(void* block) {
    if (block != nullptr) {
        --live;
        live_bytes -= held_by(block);
    }
    __real_free(block);
}

void* resized(void* block, std::size_t size) {
    const std::int64_t held = held_by(block);
    void* const moved = __real_realloc(block, size);
    if (moved != nullptr) {
        add_bytes(held_by(moved) - held);
    }
    return moved;
}

} // namespace

FailingAllocation::FailingAllocation(std::uint64_t number) {
    failed = false;
    left_until_failure = number;
}

FailingAllocation::~FailingAllocation() {
    left_until_failure = kNever;
}

bool FailingAllocation::happened() const {
    return failed;
}

std::int64_t live_allocations() {
    return live;
}

HeapPeak::HeapPeak()
    : at_start_(live_bytes) {
    most_bytes = live_bytes;
}

std::uint64_t HeapPeak::bytes() const {
    return static_cast<std::uint64_t>(most_bytes - at_start_);
}

} // namespace fault

void* __wrap_malloc(std::size_t size) {
    return fault::allocate(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
    return fault::is_failing_one() ? nullptr : fault::counted(__real_calloc(count, size));
}

void* __wrap_realloc(void* block, std::size_t size) {
    if (fault::is_failing_one()) {
        return nullptr;
    }
    return block == nullptr ? fault::counted(__real_realloc(block, size))
                            : fault::resized(block, size);
}

void __wrap_free(void* block) {
    fault::release(block);
}

void* operator new(std::size_t size) {
    return fault::allocate_or_throw(size);
}

void* operator new[](std::size_t size) {
    return fault::allocate_or_throw(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return fault::allocate(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return fault::allocate(size);
}

void operator delete(void* block) noexcept {
    fault::release(block);
}

void operator delete[](void* block) noexcept {
    fault::release(block);
}

void operator delete(void* block, std::size_t) noexcept {
    fault::release(block);
}

void operator delete[](void* block, std::size_t) noexcept {
    fault::release(block);
}

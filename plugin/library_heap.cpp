// The heap of the shared library: whatever it allocates for itself runs the new-handler when there
// is no memory. Not part of programs that link the plug-in, whose heap is their own.
#include "plugin/checked_allocation.h"

#include <cstdlib>
#include <new>

void* operator new(std::size_t size) {
    void* const memory = std::malloc(size > 0 ? size : 1);
    if (memory == nullptr) {
        ppt::run_new_handler(size);
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

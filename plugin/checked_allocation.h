// Allocations whose size a document decides. A failure runs the new-handler, if the host asked for
// it, with the size that was wanted, and ends in the status 8800.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <stdexcept>

namespace ppt {

// Makes failing allocations call the new-handler from now on.
void install_new_handler();

// Runs the new-handler, if it is installed: it leaves the size asked for and the available physical
// memory in the error parameters.
void run_new_handler(std::size_t requested) noexcept;

// For `z_stream::zalloc` and `zfree`: what zlib allocates is the library's own as well.
void* allocate_for_zlib(void*, unsigned int count, unsigned int size) noexcept;
void free_for_zlib(void*, void* memory) noexcept;

// Runs the new-handler and throws 8800.
[[noreturn]] void throw_out_of_memory(std::size_t requested);

// Sets the size of a container; every failure throws 8800.
template <class Container>
void resize_checked(Container& container, std::size_t size) {
    try {
        container.resize(size);
    } catch (const std::bad_alloc&) {
        throw_out_of_memory(size * sizeof(typename Container::value_type));
    } catch (const std::length_error&) {
        throw_out_of_memory(size);
    }
}

} // namespace ppt

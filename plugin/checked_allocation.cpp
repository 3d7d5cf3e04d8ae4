#include "plugin/checked_allocation.h"

#include "common_new/common/storage.h"
#include "plugin/error_params.h"
#include "plugin/status.h"

#include <limits>

namespace ppt {

namespace {
bool handler_installed = false;
}

void install_new_handler() {
    handler_installed = true;
}

void run_new_handler(std::size_t requested) noexcept {
    if (handler_installed) {
        v_setErrorParamNumbers(static_cast<std::int32_t>(requested),
                               static_cast<std::int32_t>(n_getAvailablePhysicalMemory()));
    }
}

void* allocate_for_zlib(void*, unsigned int count, unsigned int size) noexcept {
    const std::uint64_t wanted = std::uint64_t{count} * size;
    if (wanted > std::numeric_limits<std::size_t>::max()) {
        return nullptr;
    }
    try {
        return operator new(static_cast<std::size_t>(wanted));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void free_for_zlib(void*, void* memory) noexcept {
    operator delete(memory);
}

void throw_out_of_memory(std::size_t requested) {
    run_new_handler(requested);
    throw static_cast<int>(status::kOutOfMemory);
}

} // namespace ppt

#include "plugin/checked_allocation.h"

#include "common_new/common/storage.h"
#include "plugin/error_params.h"
#include "plugin/status.h"

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

void throw_out_of_memory(std::size_t requested) {
    run_new_handler(requested);
    throw static_cast<int>(status::kOutOfMemory);
}

} // namespace ppt

// A function of a test in place of one that a loaded library imports.
#pragma once

#include "platform/platform.h"

namespace library_test {

// Puts `replacement` where `module` keeps the address of what it imports as `name`, from whatever
// library, and puts the address back in the end. The replacement must have the same type.
class ReplacedImport {
  public:
    // Ends the program when the module imports nothing of that name.
    template <class Function>
    ReplacedImport(HMODULE module, const char* name, Function* replacement)
        : ReplacedImport(module, name, reinterpret_cast<ULONG_PTR>(replacement)) {}
    ReplacedImport(const ReplacedImport&) = delete;
    ReplacedImport& operator=(const ReplacedImport&) = delete;
    ~ReplacedImport();

  private:
    ReplacedImport(HMODULE module, const char* name, ULONG_PTR replacement);

    ULONG_PTR* address_;
    ULONG_PTR original_;
};

} // namespace library_test

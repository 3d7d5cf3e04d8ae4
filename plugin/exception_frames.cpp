// 32-bit Windows only. A library's start code tells the unwinder where the library's exception
// tables are: a shared run-time library that is in the process already, brought there by somebody
// else's plug-in, or else the unwinder that is linked in. Only the latter looks for our handlers,
// and an exception that finds none ends the host. So it is told here when the start code told the
// other one.
#include "platform/platform.h"

#include <string_view>

extern "C" {
extern IMAGE_DOS_HEADER __ImageBase; // of this library, from the linker
void __register_frame_info(const void* tables, void* object);
void* __deregister_frame_info(const void* tables);
}

namespace {

constexpr const char* kSharedRuntime = "libgcc_s_dw2-1.dll";
constexpr std::string_view kTables = ".eh_fram"; // section names have 8 characters

const void* exception_tables() {
    const auto* const image = reinterpret_cast<const char*>(&__ImageBase);
    const auto* const head =
        reinterpret_cast<const IMAGE_NT_HEADERS*>(image + __ImageBase.e_lfanew);
    const IMAGE_SECTION_HEADER* section = IMAGE_FIRST_SECTION(head);
    for (WORD i = 0; i < head->FileHeader.NumberOfSections; ++i, ++section) {
        const auto* const name = reinterpret_cast<const char*>(section->Name);
        if (std::string_view(name, sizeof section->Name) == kTables) {
            return image + section->VirtualAddress;
        }
    }
    return nullptr;
}

class Registration {
  public:
    Registration()
        : tables_(GetModuleHandleA(kSharedRuntime) != nullptr ? exception_tables() : nullptr) {
        if (tables_ != nullptr) {
            __register_frame_info(tables_, unwinders_own_);
        }
    }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
    ~Registration() {
        if (tables_ != nullptr) {
            __deregister_frame_info(tables_);
        }
    }

  private:
    const void* tables_;
    void* unwinders_own_[16] = {}; // what it keeps of the tables; it asks for six words
};

const Registration registration;

} // namespace

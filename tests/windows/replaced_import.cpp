#include "tests/windows/replaced_import.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace library_test {

namespace {

template <class Structure>
Structure* at(HMODULE module, DWORD offset) {
    return reinterpret_cast<Structure*>(reinterpret_cast<char*>(module) + offset);
}

// Where one of the module's libraries has the function's address; null when it does not give it.
ULONG_PTR* address_in(HMODULE module, const IMAGE_IMPORT_DESCRIPTOR& library, const char* name) {
    const auto* names = at<IMAGE_THUNK_DATA>(module, library.OriginalFirstThunk);
    auto* addresses = at<IMAGE_THUNK_DATA>(module, library.FirstThunk);
    for (; names->u1.AddressOfData != 0; ++names, ++addresses) {
        const auto entry = static_cast<DWORD>(names->u1.AddressOfData);
        if (!IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal) &&
            std::strcmp(at<IMAGE_IMPORT_BY_NAME>(module, entry)->Name, name) == 0) {
            return &addresses->u1.Function;
        }
    }
    return nullptr;
}

ULONG_PTR* address_of(HMODULE module, const char* name) {
    const auto headers_at = static_cast<DWORD>(at<IMAGE_DOS_HEADER>(module, 0)->e_lfanew);
    const IMAGE_DATA_DIRECTORY& imports =
        at<IMAGE_NT_HEADERS>(module, headers_at)
            ->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (const auto* library = at<IMAGE_IMPORT_DESCRIPTOR>(module, imports.VirtualAddress);
         library->Name != 0; ++library) {
        if (ULONG_PTR* const address = address_in(module, *library, name)) {
            return address;
        }
    }
    std::fprintf(stderr, "the library does not import %s\n", name);
    std::exit(EXIT_FAILURE);
}

void write(ULONG_PTR* address, ULONG_PTR value) {
    DWORD protection = 0;
    VirtualProtect(address, sizeof *address, PAGE_READWRITE, &protection);
    *address = value;
    VirtualProtect(address, sizeof *address, protection, &protection);
}

} // namespace

ReplacedImport::ReplacedImport(HMODULE module, const char* name, ULONG_PTR replacement)
    : address_(address_of(module, name))
    , original_(*address_) {
    write(address_, replacement);
}

ReplacedImport::~ReplacedImport() {
    write(address_, original_);
}

} // namespace library_test

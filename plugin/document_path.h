// The path of the loaded presentation, empty when none is loaded. It explains failures: the storage
// wrappers put it into the error parameters by themselves.
#pragma once

#include <string>
#include <string_view>

namespace ppt {

// In the ANSI code page, at most 1023 bytes; valid until the next set_document_path.
const std::string& document_path();

// The caller has checked the length.
void set_document_path(std::string_view path);

} // namespace ppt

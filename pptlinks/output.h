// Writing what a command has put together, in one piece.
#pragma once

#include <string>

namespace pptlinks {

// To standard output, at once. Throws FileFailure when not all of it could be written.
void print(const std::string& text);

// A line on standard error.
void complain(const std::string& line);

} // namespace pptlinks

// Writing what a command has put together.
#pragma once

#include <string>

namespace pptlinks {

// To standard output, at once. Throws FileFailure when not all of it could be written.
void print(const std::string& text);

// Prints and empties a text that grew so large that keeping more of it would be a waste.
void print_when_large(std::string& text);

// A line on standard error.
void complain(const std::string& line);

} // namespace pptlinks

// Text as it may reach a terminal. Names and texts come from files that nobody vouches for: what
// would move the cursor, colour the screen, reorder the line or hide in it is shown as \x1B (below
// U+0080) or <U+202E> instead of being sent.
#pragma once

#include "pptlinks/failure.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace pptlinks {

// Whether a code point can be sent wherever it stands. Joiners and variation selectors cannot: they
// are sent only behind a printable character outside ASCII.
bool is_printable(std::uint32_t code);

// Appends the text in UTF-8; gives the number of columns that it takes.
std::size_t append_terminal_text(std::string& out, WideView text);

std::string terminal_text(WideView text);

// Of text in UTF-8, such as the user's arguments.
std::string terminal_text_from_utf8(std::string_view text);

} // namespace pptlinks

// What `list` and `check` have in common: a file is loaded, its links are shown one by one, and a
// file that fails is told of in the same form.
#pragma once

#include "pptlinks/session.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace pptlinks {

inline constexpr std::string_view kNone = "-"; // in place of a text that is not there

// Loads the presentation `file`, as the user typed it, whose absolute name is `name`, and complains
// of what could not be read of it. Every link of what it gives can be had, so nothing fails once
// the first is printed. Null for a file that fails: that is complained of and, with `json`, printed
// as an object without links.
std::unique_ptr<LoadedPresentation> load_to_list(const Session& session, const std::string& file,
                                                 const std::string& name, bool json);

// "1 link", "2 links".
std::string counted(std::size_t count, const std::string& noun);

} // namespace pptlinks

// `pptlinks list`: the links of each file, as a table or as JSON.
#pragma once

#include "pptlinks/arguments.h"

namespace pptlinks {

// Goes on after a file that fails; gives the exit status.
int run_list(const ListArguments& arguments);

} // namespace pptlinks

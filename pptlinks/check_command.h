// `pptlinks check`: whether the files that the links lead to are there.
#pragma once

#include "pptlinks/arguments.h"

namespace pptlinks {

// Prints one line for each link whose target is not there and a summary for each file, or JSON.
// Goes on after a file that fails; gives the exit status. Changes the process's current directory.
int run_check(const CheckArguments& arguments);

} // namespace pptlinks

// `pptlinks relink`: a copy of a presentation with changed links and ids.
#pragma once

#include "pptlinks/arguments.h"

namespace pptlinks {

// Writes the copy and tells on standard output what changed. Throws FileFailure for what it refuses
// or cannot write, UsageError for wishes that cannot be meant; words the plug-in's failures itself.
// Gives the exit status.
int run_relink(const RelinkArguments& arguments);

} // namespace pptlinks

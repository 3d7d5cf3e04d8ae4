// The whole program: here the command is chosen and every failure becomes a sentence and an exit
// status.
#pragma once

namespace pptlinks {

// Takes the arguments of `main` and gives its result; nothing is thrown. Settings of the platform
// layer that the arguments ask for stay.
int run_program(int argc, const char* const* argv);

} // namespace pptlinks

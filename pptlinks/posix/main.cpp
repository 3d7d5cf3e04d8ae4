// pptlinks: lists, checks and changes the links of PowerPoint 97-2003 presentations, as a host of
// the plug-in.
#include "pptlinks/program.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

// The next file that is opened would take the place of a closed standard output, and what is
// printed would go into it. What stands there instead cannot be written, so that printing fails.
void take_closed_standard_places() {
    int descriptor = 0;
    do {
        descriptor = open("/dev/null", O_RDONLY);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0) {
        close(descriptor);
    }
}

} // namespace

int main(int argc, char** argv) {
    take_closed_standard_places();
    // A file that may not grow further fails the write, which is reported; nobody dies of it.
    std::signal(SIGXFSZ, SIG_IGN);
    return pptlinks::run_program(argc, argv);
}

// pptlinks: lists, checks and changes the links of PowerPoint 97-2003 presentations, as a host of
// the plug-in.
#include "pptlinks/program.h"

int main(int argc, char** argv) {
    return pptlinks::run_program(argc, argv);
}

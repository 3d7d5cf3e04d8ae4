#include "pptlinks/output.h"

#include "pptlinks/failure.h"

#include <cstdio>

namespace pptlinks {

void print(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() ||
        std::fflush(stdout) != 0) {
        throw FileFailure("standard output",
                          "not everything could be written; check where the output goes");
    }
}

void complain(const std::string& line) {
    std::fprintf(stderr, "%s\n", line.c_str());
}

} // namespace pptlinks

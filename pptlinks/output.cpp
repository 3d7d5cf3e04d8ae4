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

void print_when_large(std::string& text) {
    constexpr std::size_t kLarge = std::size_t{64} * 1024;
    if (text.size() >= kLarge) {
        print(text);
        text.clear();
    }
}

void complain(const std::string& line) {
    std::fprintf(stderr, "%s\n", line.c_str());
}

} // namespace pptlinks

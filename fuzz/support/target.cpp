// The entrance of libFuzzer, which replay_main.cpp uses too. The limit of time counts the
// processor's time and not the clock's, so that a busy machine makes no findings.
#include "fuzz/support/target.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/time.h>

namespace {

constexpr int kMostSeconds = 2;

extern "C" void time_is_up(int /*signal*/) {
    std::abort();
}

void limit_time(int seconds) {
    itimerval limit{};
    limit.it_value.tv_sec = seconds;
    setitimer(ITIMER_PROF, &limit, nullptr);
}

} // namespace

namespace fuzz {

void require(bool holds, const char* sentence) {
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", sentence);
        std::abort();
    }
}

} // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto handled = std::signal(SIGPROF, time_is_up);
    fuzz::require(handled != SIG_ERR, "the limit of time can be set");
    limit_time(kMostSeconds);
    fuzz::test_one({data, size});
    limit_time(0);
    return 0;
}

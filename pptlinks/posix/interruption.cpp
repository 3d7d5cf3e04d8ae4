#include "pptlinks/posix/interruption.h"

#include <climits>
#include <csignal>
#include <unistd.h>

namespace pptlinks {

namespace {

constexpr int kEndingSignals[] = {SIGHUP, SIGINT, SIGPIPE, SIGQUIT, SIGTERM, SIGXCPU};

// Changed in a pause only, so that the handler never sees half a path.
char removed_path[PATH_MAX];

extern "C" void remove_and_end(int number) {
    if (removed_path[0] != '\0') {
        ::unlink(removed_path);
    }
    ::raise(number); // to the system: the handler is taken away when it is called
}

void handle(int number) {
    struct sigaction found {};
    if (::sigaction(number, nullptr, &found) != 0 || found.sa_handler == SIG_IGN) {
        return;
    }
    struct sigaction action {};
    action.sa_handler = remove_and_end;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    ::sigaction(number, &action, nullptr);
}

} // namespace

InterruptionPause::InterruptionPause() {
    sigset_t ending;
    ::sigemptyset(&ending);
    for (const int number : kEndingSignals) {
        ::sigaddset(&ending, number);
    }
    ::sigprocmask(SIG_BLOCK, &ending, &before_);
}

InterruptionPause::~InterruptionPause() {
    ::sigprocmask(SIG_SETMASK, &before_, nullptr);
}

void remove_when_interrupted(const std::string& path) {
    removed_path[path.copy(removed_path, sizeof removed_path - 1)] = '\0';
    for (const int number : kEndingSignals) {
        handle(number);
    }
}

void remove_nothing_when_interrupted() {
    const InterruptionPause pause;
    removed_path[0] = '\0';
}

} // namespace pptlinks

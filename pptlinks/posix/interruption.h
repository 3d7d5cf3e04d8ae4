// The temporary file goes with a process that a signal ends.
#pragma once

#include <csignal>
#include <string>

namespace pptlinks {

// Holds back the signals that usually end a process (SIGHUP, SIGINT, SIGPIPE, SIGQUIT, SIGTERM,
// SIGXCPU) as long as it lives. Those that came meanwhile arrive when it goes.
class InterruptionPause {
  public:
    InterruptionPause();
    InterruptionPause(const InterruptionPause&) = delete;
    InterruptionPause& operator=(const InterruptionPause&) = delete;
    ~InterruptionPause();

  private:
    sigset_t before_{}; // what was held back then
};

// Has the one file at `path` removed by such a signal, which then ends the process as it would have
// without. A signal that the process was started to ignore stays ignored. To be called in a pause;
// the path is shorter than PATH_MAX. SIGKILL removes nothing.
void remove_when_interrupted(const std::string& path);

// Whoever interrupts the process removes nothing any more.
void remove_nothing_when_interrupted();

} // namespace pptlinks

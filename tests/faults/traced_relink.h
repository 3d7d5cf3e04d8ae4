// The built program, stopped before a chosen one of its calls that change a file.
#pragma once

#include "tests/pptlinks/built_program.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace fault {

// Killed when its owner goes while it is stopped.
class TracedRelink {
  public:
    TracedRelink(const std::string& folder, const std::vector<std::string>& arguments);

    // Runs to the change with the given number, counted from 0 and from where it stands, and stops
    // before it. False when the program ends before.
    bool run_to_change(std::size_t number);

    // Sends it SIGINT, SIGHUP or SIGTERM, which it gets when it runs on.
    void interrupt(int number) const;

    // Lets it run to its end.
    pptlinks::RunResult finish();

    // Why this machine lets no process be traced; empty when it does.
    std::string why_not() const;

  private:
    void run_on();
    // Whether the call at which it stands changes a file in the folder, changes a name, or writes
    // the report.
    bool changes_something() const;
    bool is_in_folder(std::uint64_t descriptor) const;

    std::string folder_;
    pptlinks::BuiltProgram program_;
    int state_; // that of waitpid
};

} // namespace fault

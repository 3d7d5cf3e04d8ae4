// The built program in processes of its own, for what only those show.
#pragma once

#include "tests/pptlinks/program_run.h"

#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace pptlinks {

// One process that runs the program, in the plain C locale. It is killed when its owner goes before
// its end.
class BuiltProgram {
  public:
    // Starts in the folder. `prepare` runs in the new process, when its outputs are pipes and
    // before it becomes the program.
    BuiltProgram(const std::string& folder, const std::vector<std::string>& arguments,
                 const std::function<void()>& prepare = {});
    BuiltProgram(const BuiltProgram&) = delete;
    BuiltProgram& operator=(const BuiltProgram&) = delete;
    ~BuiltProgram();

    pid_t id() const { return process_; }

    // Waits until the process stops or ends; the status is that of waitpid.
    int next_state();

    // Waits for the end. The program writes less than a pipe holds to either output.
    RunResult wait();

  private:
    pid_t process_ = -1;
    int out_ = -1;
    int error_ = -1;
    int state_ = 0;
    bool ended_ = false;
};

class BuiltProgramRun : public ProgramRun {
  protected:
    // In a process of its own, in the test's folder; see BuiltProgram.
    RunResult run_built(const std::vector<std::string>& arguments,
                        const std::function<void()>& prepare = {}) const {
        return BuiltProgram(path(""), arguments, prepare).wait();
    }
};

} // namespace pptlinks

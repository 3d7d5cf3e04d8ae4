#include "tests/pptlinks/built_program.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pptlinks {

namespace {

constexpr int kNotStarted = 127;

std::string rest_of(int descriptor) {
    std::string text;
    char buffer[4096];
    for (ssize_t count = 0; (count = read(descriptor, buffer, sizeof buffer)) > 0;) {
        text.append(buffer, static_cast<std::size_t>(count));
    }
    return text;
}

} // namespace

BuiltProgram::BuiltProgram(const std::string& folder, const std::vector<std::string>& arguments,
                           const std::function<void()>& prepare) {
    std::vector<char*> argv{const_cast<char*>("pptlinks")};
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    int out[2];
    int error[2];
    EXPECT_EQ(pipe2(out, O_CLOEXEC), 0);
    EXPECT_EQ(pipe2(error, O_CLOEXEC), 0);
    process_ = fork();
    if (process_ == 0) {
        if (chdir(folder.c_str()) != 0 || dup2(out[1], STDOUT_FILENO) < 0 ||
            dup2(error[1], STDERR_FILENO) < 0) {
            _exit(kNotStarted);
        }
        setenv("LC_ALL", "C", 1);
        if (prepare) {
            prepare();
        }
        execv(PPTLINKS_PROGRAM, argv.data());
        _exit(kNotStarted);
    }
    EXPECT_GT(process_, 0);
    close(out[1]);
    close(error[1]);
    out_ = out[0];
    error_ = error[0];
}

BuiltProgram::~BuiltProgram() {
    if (!ended_) {
        kill(process_, SIGKILL);
        wait();
    }
    close(out_);
    close(error_);
}

int BuiltProgram::next_state() {
    EXPECT_EQ(waitpid(process_, &state_, 0), process_);
    ended_ = WIFEXITED(state_) || WIFSIGNALED(state_);
    return state_;
}

RunResult BuiltProgram::wait() {
    RunResult result;
    result.out = rest_of(out_);
    result.error = rest_of(error_);
    while (!ended_) {
        next_state();
    }
    result.status = WIFEXITED(state_) ? WEXITSTATUS(state_) : -1;
    return result;
}

} // namespace pptlinks

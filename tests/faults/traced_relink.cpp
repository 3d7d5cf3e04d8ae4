#include "tests/faults/traced_relink.h"

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <linux/filter.h>
#include <linux/fs.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fault {

namespace {

// The calls at which the kernel stops a traced relink.
constexpr unsigned kChangingCalls[] = {
    SYS_write,    SYS_pwrite64,  SYS_ftruncate, SYS_fallocate, SYS_copy_file_range,
    SYS_ioctl,    SYS_fchmod,    SYS_fsync,     SYS_fdatasync, SYS_openat,
    SYS_renameat, SYS_renameat2, SYS_unlinkat,
#ifdef SYS_rename
    SYS_rename,   SYS_unlink,
#endif
};
constexpr int kNotTraced = 100; // and the errno value, as exit status
constexpr int kStopAtCall = SIGTRAP | PTRACE_EVENT_SECCOMP << 8;

bool stop_at_changing_calls() {
    constexpr unsigned char kCount = std::size(kChangingCalls);
    sock_filter filter[kCount + 3] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (unsigned char i = 0; i < kCount; ++i) {
        const unsigned char to_the_last = kCount - i;
        filter[i + 1] = BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, kChangingCalls[i], to_the_last, 0);
    }
    filter[kCount + 1] = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
    filter[kCount + 2] = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE);
    const sock_fprog program{std::size(filter), filter};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

// In the process that becomes the relink.
void let_be_traced() {
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1); // leaks cannot be looked for in a traced process
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0 || raise(SIGSTOP) != 0 ||
        !stop_at_changing_calls()) {
        _exit(kNotTraced + errno);
    }
}

} // namespace

TracedRelink::TracedRelink(const std::string& folder, const std::vector<std::string>& arguments)
    : folder_(folder)
    , program_(folder, arguments, let_be_traced)
    , state_(program_.next_state()) {
    if (WIFSTOPPED(state_)) {
        ptrace(PTRACE_SETOPTIONS, program_.id(), nullptr, PTRACE_O_TRACESECCOMP);
    }
}

bool TracedRelink::run_to_change(std::size_t number) {
    for (std::size_t changes = 0; WIFSTOPPED(state_); run_on()) {
        if (state_ >> 8 == kStopAtCall && changes_something() && changes++ == number) {
            return true;
        }
    }
    return false;
}

pptlinks::RunResult TracedRelink::finish() {
    while (WIFSTOPPED(state_)) {
        run_on();
    }
    return program_.wait();
}

std::string TracedRelink::why_not() const {
    return WIFEXITED(state_) && WEXITSTATUS(state_) > kNotTraced
               ? std::string("no process can be stopped at its calls here: ") +
                     std::strerror(WEXITSTATUS(state_) - kNotTraced)
               : "";
}

void TracedRelink::interrupt(int number) const {
    kill(program_.id(), number);
}

void TracedRelink::run_on() {
    // A signal that came stands in the state of its stop; the process gets it.
    const int stop = state_ >> 8;
    const bool is_interruption = stop == SIGINT || stop == SIGHUP || stop == SIGTERM;
    const std::intptr_t number = is_interruption ? stop : 0;
    ptrace(PTRACE_CONT, program_.id(), nullptr, reinterpret_cast<void*>(number));
    state_ = program_.next_state();
}

bool TracedRelink::changes_something() const {
    __ptrace_syscall_info info{};
    ptrace(PTRACE_GET_SYSCALL_INFO, program_.id(), sizeof info, &info);
    const auto& arguments = info.seccomp.args;
    switch (info.seccomp.nr) {
    case SYS_write:
        return arguments[0] == STDOUT_FILENO || is_in_folder(arguments[0]);
    case SYS_pwrite64:
    case SYS_ftruncate:
    case SYS_fallocate:
    case SYS_fchmod:
    case SYS_fsync:
    case SYS_fdatasync:
        return is_in_folder(arguments[0]);
    case SYS_ioctl:
        return arguments[1] == FICLONE;
    case SYS_openat:
        return (arguments[2] & O_CREAT) != 0;
    default:
        return true;
    }
}

bool TracedRelink::is_in_folder(std::uint64_t descriptor) const {
    std::error_code closed;
    const std::string file =
        std::filesystem::read_symlink(
            "/proc/" + std::to_string(program_.id()) + "/fd/" + std::to_string(descriptor), closed)
            .string();
    return file.starts_with(folder_);
}

} // namespace fault

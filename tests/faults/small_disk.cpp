#include "tests/faults/small_disk.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sched.h>
#include <string_view>
#include <sys/mount.h>
#include <unistd.h>

namespace fault {

namespace {

bool put(const char* file, const std::string& text) {
    const int descriptor = open(file, O_WRONLY | O_CLOEXEC);
    const bool done =
        write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    close(descriptor);
    return done;
}

bool become_root_of_a_namespace() {
    const std::string user = std::to_string(getuid());
    const std::string group = std::to_string(getgid());
    return unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && put("/proc/self/setgroups", "deny") &&
           put("/proc/self/uid_map", "0 " + user + " 1") &&
           put("/proc/self/gid_map", "0 " + group + " 1");
}

bool get_mounts_of_our_own() {
    static const bool done = (unshare(CLONE_NEWNS) == 0 || become_root_of_a_namespace()) &&
                             mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    return done;
}

} // namespace

SmallDisk::SmallDisk(const std::string& folder, const std::string& options)
    : folder_(folder) {
    if (!get_mounts_of_our_own() ||
        mount("tmpfs", folder.c_str(), "tmpfs", 0, options.c_str()) != 0) {
        why_not_ = std::string("no disk can be mounted here: ") + std::strerror(errno);
    }
}

SmallDisk::~SmallDisk() {
    if (why_not_.empty()) {
        umount(folder_.c_str());
    }
}

} // namespace fault

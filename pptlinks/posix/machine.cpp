// The platform layer is told of code page, drives and shares; files are made and looked at by
// system calls.
#include "pptlinks/machine.h"

#include "platform/posix/settings.h"
#include "pptlinks/failure.h"
#include "pptlinks/posix/interruption.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>

namespace pptlinks {

namespace {

std::error_code last_error() {
    return {errno, std::generic_category()};
}

mode_t mode_of_new_file() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return static_cast<mode_t>(0666) & ~mask;
}

} // namespace

void use_code_page(std::uint32_t page) {
    if (!platform::set_ansi_code_page(page)) {
        throw UsageError("--code-page: this system does not know code page " +
                         std::to_string(page));
    }
}

void map_drive(const std::string& entry) {
    if (!platform::map_drive(entry)) {
        throw UsageError("--drive: '" + entry +
                         "' is not of the form 'Z:=/folder', '\\\\server\\share=/folder' or "
                         "'Z:=\\\\server\\share'");
    }
}

void trust_link_targets(bool trust) {
    platform::trust_link_targets(trust);
}

std::string native_path(const std::string& ansi_path) {
    return platform::to_native_path(ansi_path);
}

FileIdentity identity_of(const std::string& native) {
    constexpr std::uint64_t kNanoseconds = 1000000000;
    struct stat found {};
    if (::stat(native.c_str(), &found) != 0) {
        return {};
    }
    return {found.st_dev, found.st_ino, static_cast<std::uint64_t>(found.st_size),
            static_cast<std::uint64_t>(found.st_mtim.tv_sec) * kNanoseconds +
                static_cast<std::uint64_t>(found.st_mtim.tv_nsec)};
}

bool is_writable(const std::string& native) {
    return ::access(native.c_str(), W_OK) == 0;
}

std::error_code create_temporary_file(std::string& path) {
    const InterruptionPause pause;
    const int descriptor = ::mkstemp(path.data());
    if (descriptor < 0) {
        return last_error();
    }
    ::close(descriptor);
    remove_when_interrupted(path);
    return {};
}

std::error_code finish_temporary_file(const std::string& path, const std::string& old) {
    struct stat replaced {};
    const bool replaces = ::stat(old.c_str(), &replaced) == 0;
    const mode_t mode =
        replaces ? replaced.st_mode & static_cast<mode_t>(07777) : mode_of_new_file();
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return last_error();
    }
    const bool done = ::fchmod(descriptor, mode) == 0 && (!replaces || ::fsync(descriptor) == 0);
    const std::error_code error = done ? std::error_code() : last_error();
    ::close(descriptor);
    return error;
}

std::error_code rename_temporary_file(const std::string& path, const std::string& out) {
    if (::rename(path.c_str(), out.c_str()) != 0) {
        return last_error();
    }
    remove_nothing_when_interrupted();
    return {};
}

void remove_temporary_file(const std::string& path) {
    ::unlink(path.c_str());
    remove_nothing_when_interrupted();
}

} // namespace pptlinks

#include "pptlinks/output_file.h"

#include "pptlinks/failure.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <utility>

namespace pptlinks {

namespace {

constexpr const char* kTemporaryName = ".pptlinks-XXXXXX"; // for mkstemp

std::string reason(int error) {
    return std::string(" (") + std::strerror(error) + ")";
}

// The file that OUT names through symbolic links, if there is one. A Windows path stays as it is:
// the plug-in knows the copy by its folder there.
FileName follow_links(FileName out) {
    std::error_code missing;
    if (!out.is_windows_path && std::filesystem::is_symlink(out.native, missing)) {
        const std::string target = std::filesystem::canonical(out.native, missing).string();
        if (!missing) {
            out.native = target;
        }
    }
    return out;
}

} // namespace

OutputFile::OutputFile(const FileName& source, const FileName& out)
    : out_(follow_links(out)) {
    if (is_same_file(source, out_)) {
        fail("this is the presentation itself, which is never written; give the copy another name");
    }
    require_folder();
    look_at_old_file();
}

OutputFile::~OutputFile() {
    if (exists_) {
        ::unlink(temporary_.native.c_str());
    }
}

void OutputFile::fail(const std::string& problem) const {
    throw FileFailure(out_.typed, problem);
}

void OutputFile::require_folder() const {
    if (out_.native.empty()) {
        fail("its drive or share is not known; name it with --drive");
    }
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::path(out_.native).parent_path();
    if (!std::filesystem::is_directory(folder, error)) {
        fail("its folder does not exist; create the folder or choose another");
    }
}

void OutputFile::look_at_old_file() {
    struct stat old {};
    if (::stat(out_.native.c_str(), &old) != 0) {
        return;
    }
    if (S_ISDIR(old.st_mode)) {
        fail("this is a folder; give the name of a file in it");
    }
    if (!S_ISREG(old.st_mode)) {
        fail("this is not a plain file; choose another name");
    }
    if (::access(out_.native.c_str(), W_OK) != 0) {
        fail("the file that is there may not be replaced; remove its write protection or choose "
             "another name");
    }
    replaced_mode_ = old.st_mode & static_cast<mode_t>(07777);
}

const std::string& OutputFile::create() {
    std::string path = beside(out_, kTemporaryName).native;
    const int descriptor = ::mkstemp(path.data());
    if (descriptor < 0) {
        fail("no file can be created in its folder" + reason(errno) +
             "; check the folder's permissions and the free space");
    }
    ::close(descriptor);
    temporary_.native = path;
    exists_ = true;
    temporary_ = beside(out_, std::filesystem::path(path).filename().string());
    return temporary_.ansi;
}

mode_t OutputFile::final_mode() const {
    if (replaced_mode_) {
        return *replaced_mode_;
    }
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return static_cast<mode_t>(0666) & ~mask;
}

void OutputFile::set_mode_and_flush() const {
    const int descriptor = ::open(temporary_.native.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        fail("the finished copy cannot be opened" + reason(errno) + "; try again");
    }
    const bool done =
        ::fchmod(descriptor, final_mode()) == 0 && (!replaced_mode_ || ::fsync(descriptor) == 0);
    const int error = errno;
    ::close(descriptor);
    if (!done) {
        fail("the copy could not be finished" + reason(error) + "; check the disk and try again");
    }
}

void OutputFile::publish() {
    set_mode_and_flush();
    if (std::rename(temporary_.native.c_str(), out_.native.c_str()) != 0) {
        fail("the finished copy could not be given this name" + reason(errno) +
             "; choose another name");
    }
    exists_ = false;
}

} // namespace pptlinks

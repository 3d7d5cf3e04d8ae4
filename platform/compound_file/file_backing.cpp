// A backing that is a file: positioned reads and writes, open-file-description locks, copies inside
// the kernel. Owns the descriptor; the lock goes with it. Locks are of that kind because the
// classic ones neither conflict inside one process nor survive the closing of another descriptor of
// the file.
#include "platform/compound_file/backing.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <limits>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace compound_file {
namespace {

using platform::Errc;
using platform::Error;

constexpr mode_t kNewFileMode = 0666;

[[noreturn]] void fail(Errc code, int error, const std::string& what) {
    throw Error(code, what + ": " + std::strerror(error));
}

Errc write_error(int error) {
    switch (error) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG: // the process or the file system takes no larger file
        return Errc::medium_full;
    default:
        return Errc::write_fault;
    }
}

bool is_directory(const std::string& path) {
    struct stat found {};
    return ::stat(path.c_str(), &found) == 0 && S_ISDIR(found.st_mode);
}

Errc missing_error(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    if (slash == std::string::npos || slash == 0) {
        return Errc::not_found;
    }
    return is_directory(path.substr(0, slash)) ? Errc::not_found : Errc::path_not_found;
}

Errc open_error(int error, const std::string& path) {
    switch (error) {
    case ENOENT:
        return missing_error(path);
    case ENOTDIR:
        return Errc::path_not_found;
    case EEXIST:
        return Errc::exists;
    case EROFS:
        return Errc::write_protected;
    case EMFILE:
    case ENFILE:
        return Errc::too_many_files;
    case EISDIR:
        return Errc::is_directory;
    case ENAMETOOLONG:
        return Errc::invalid_name;
    case ENOSPC:
    case EDQUOT:
        return Errc::medium_full;
    case ENOMEM:
        return Errc::no_memory;
    default:
        return Errc::access;
    }
}

off_t file_position(std::uint64_t offset) {
    if (offset > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max())) {
        throw Error(Errc::too_large, "file offset " + std::to_string(offset));
    }
    return static_cast<off_t>(offset);
}

class FileBacking final : public Backing {
  public:
    explicit FileBacking(int descriptor)
        : descriptor_(descriptor) {}
    ~FileBacking() override { ::close(descriptor_); }
    FileBacking(const FileBacking&) = delete;
    FileBacking& operator=(const FileBacking&) = delete;

    // Refuses what is no ordinary file and takes the lock.
    void settle(const std::string& path, Access access) {
        const mode_t mode = stat_of(path).st_mode;
        if (!S_ISREG(mode)) {
            throw Error(S_ISDIR(mode) ? Errc::is_directory : Errc::access,
                        path + " is no ordinary file");
        }
        lock(path, access);
        // Only now: until the lock was there another writer may have made the file longer.
        size_ = static_cast<std::uint64_t>(stat_of(path).st_size);
    }

    std::size_t read_at(std::uint64_t offset, std::span<std::uint8_t> out) override {
        std::size_t done = 0;
        while (done < out.size()) {
            const ssize_t got = ::pread(descriptor_, out.data() + done, out.size() - done,
                                        file_position(offset + done));
            if (got < 0 && errno == EINTR) {
                continue;
            }
            if (got < 0) {
                fail(Errc::read_fault, errno, "read at " + std::to_string(offset + done));
            }
            if (got == 0) {
                break;
            }
            done += static_cast<std::size_t>(got);
        }
        return done;
    }

    void write_at(std::uint64_t offset, std::span<const std::uint8_t> data) override {
        std::size_t done = 0;
        while (done < data.size()) {
            const ssize_t put = ::pwrite(descriptor_, data.data() + done, data.size() - done,
                                         file_position(offset + done));
            if (put < 0 && errno == EINTR) {
                continue;
            }
            if (put <= 0) {
                const int error = put < 0 ? errno : ENOSPC;
                fail(write_error(error), error, "write at " + std::to_string(offset + done));
            }
            done += static_cast<std::size_t>(put);
            size_ = std::max(size_, offset + done);
        }
    }

    std::uint64_t copy_from(Backing& source, std::uint64_t from, std::uint64_t to,
                            std::uint64_t count) override {
        const std::uint64_t there = source.size();
        count = from < there ? std::min(count, there - from) : 0;
        const bool overlaps = &source == this && from < to + count && to < from + count;
        const std::uint64_t done =
            source.descriptor() < 0 || overlaps ? 0 : copy_in_kernel(source, from, to, count);
        return done < count
                   ? done + Backing::copy_from(source, from + done, to + done, count - done)
                   : done;
    }

    void reserve(std::uint64_t size) override {
        if (size <= size_) {
            return;
        }
        const off_t from = file_position(size_);
        const off_t length = file_position(size) - from;
        int result = 0;
        do {
            result = ::fallocate(descriptor_, 0, from, length);
        } while (result != 0 && errno == EINTR);
        if (result != 0 && errno != EOPNOTSUPP && errno != ENOSYS && errno != EINVAL) {
            const int error = errno;
            fail(write_error(error), error, "reserving " + std::to_string(size) + " bytes");
        }
        if (result != 0) {
            truncate(size);
        }
        size_ = size;
    }

    void truncate(std::uint64_t size) override {
        if (::ftruncate(descriptor_, file_position(size)) != 0) {
            const int error = errno;
            fail(write_error(error), error, "setting a length of " + std::to_string(size));
        }
        size_ = size;
    }

    std::uint64_t size() const override { return size_; }

    void sync() override {
        if (::fdatasync(descriptor_) != 0) {
            fail(Errc::write_fault, errno, "sync");
        }
    }

    int descriptor() const override { return descriptor_; }

  private:
    struct stat stat_of(const std::string& path) const {
        struct stat found {};
        if (::fstat(descriptor_, &found) != 0) {
            fail(Errc::access, errno, "stat of " + path);
        }
        return found;
    }

    void lock(const std::string& path, Access access) {
        struct flock whole {};
        whole.l_type = access == Access::read ? F_RDLCK : F_WRLCK;
        whole.l_whence = SEEK_SET;
        if (::fcntl(descriptor_, F_OFD_SETLK, &whole) == 0) {
            return;
        }
        if (errno == EAGAIN || errno == EACCES) {
            throw Error(Errc::sharing, path + " is in use");
        }
        // Where the file system has no locks we go on without.
    }

    // Copies as far as the kernel is willing to; the caller does the rest.
    std::uint64_t copy_in_kernel(const Backing& source, std::uint64_t from, std::uint64_t to,
                                 std::uint64_t count) {
        off_t in = file_position(from);
        off_t out = file_position(to);
        std::uint64_t done = 0;
        while (done < count) {
            const auto piece = static_cast<std::size_t>(
                std::min<std::uint64_t>(count - done, std::uint64_t{1} << 30));
            const ssize_t copied =
                ::copy_file_range(source.descriptor(), &in, descriptor_, &out, piece, 0);
            if (copied < 0 && errno == EINTR) {
                continue;
            }
            if (copied < 0 && (errno == ENOSPC || errno == EDQUOT || errno == EFBIG)) {
                const int error = errno;
                fail(write_error(error), error, "copy to " + std::to_string(to + done));
            }
            if (copied <= 0) {
                break;
            }
            done += static_cast<std::uint64_t>(copied);
            size_ = std::max(size_, to + done);
        }
        return done;
    }

    int descriptor_;
    std::uint64_t size_ = 0; // nobody else writes while the lock is held
};

std::unique_ptr<FileBacking> open_with(const std::string& path, int flags, Access access) {
    // O_NONBLOCK: opening a pipe by mistake must not wait for its other end.
    int descriptor = -1;
    do {
        descriptor = ::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, kNewFileMode);
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0) {
        const int error = errno;
        fail(open_error(error, path), error, "opening " + path);
    }
    auto file = std::make_unique<FileBacking>(descriptor);
    file->settle(path, access);
    return file;
}

} // namespace

std::unique_ptr<Backing> open_file(const std::string& native_path, Access access) {
    return open_with(native_path, access == Access::read ? O_RDONLY : O_RDWR, access);
}

std::unique_ptr<Backing> create_file(const std::string& native_path, bool replace) {
    auto file =
        open_with(native_path, O_RDWR | O_CREAT | (replace ? 0 : O_EXCL), Access::read_write);
    file->truncate(0);
    return file;
}

} // namespace compound_file

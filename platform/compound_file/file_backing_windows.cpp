// A backing that is a file of Windows: positioned reads and writes, and sharing that the system
// keeps for as long as the file is open. Owns the handle.
#include "platform/compound_file/backing.h"
#include "platform/unicode/utf8.h"

#include <windows.h>

#include <algorithm>
#include <string>

namespace compound_file {
namespace {

using platform::Errc;
using platform::Error;

constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;

Errc open_error(DWORD error) {
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
        return Errc::not_found;
    case ERROR_PATH_NOT_FOUND:
        return Errc::path_not_found;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
        return Errc::exists;
    case ERROR_WRITE_PROTECT:
        return Errc::write_protected;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
        return Errc::sharing;
    case ERROR_TOO_MANY_OPEN_FILES:
        return Errc::too_many_files;
    case ERROR_INVALID_NAME:
        return Errc::invalid_name;
    case ERROR_DISK_FULL:
        return Errc::medium_full;
    case ERROR_NOT_ENOUGH_MEMORY:
        return Errc::no_memory;
    default:
        return Errc::access;
    }
}

Errc write_error(DWORD error) {
    return error == ERROR_DISK_FULL || error == ERROR_HANDLE_DISK_FULL ? Errc::medium_full
                                                                       : Errc::write_fault;
}

[[noreturn]] void fail(Errc code, DWORD error, const std::string& what) {
    throw Error(code, what + ": error " + std::to_string(error));
}

OVERLAPPED place(std::uint64_t offset) {
    OVERLAPPED position{};
    position.Offset = static_cast<DWORD>(offset);
    position.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return position;
}

std::wstring wide_path(const std::string& path) {
    const std::u16string wide = unicode::utf8_to_utf16_lossy(path);
    return {wide.begin(), wide.end()};
}

class FileBacking final : public Backing {
  public:
    FileBacking(const std::string& path, Access access, DWORD disposition)
        : handle_(CreateFileW(wide_path(path).c_str(),
                              access == Access::read ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE,
                              access == Access::read ? FILE_SHARE_READ : 0, nullptr, disposition,
                              FILE_ATTRIBUTE_NORMAL, nullptr)) {
        if (handle_ == INVALID_HANDLE_VALUE) {
            const DWORD error = GetLastError();
            const DWORD attributes = GetFileAttributesW(wide_path(path).c_str());
            const bool is_folder = attributes != INVALID_FILE_ATTRIBUTES &&
                                   (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
            fail(is_folder ? Errc::is_directory : open_error(error), error, "opening " + path);
        }
    }
    ~FileBacking() override { CloseHandle(handle_); }
    FileBacking(const FileBacking&) = delete;
    FileBacking& operator=(const FileBacking&) = delete;

    std::size_t read_at(std::uint64_t offset, std::span<std::uint8_t> out) override {
        std::size_t done = 0;
        while (done < out.size()) {
            OVERLAPPED position = place(offset + done);
            DWORD got = 0;
            const auto count = static_cast<DWORD>(std::min(out.size() - done, kMostAtOnce));
            if (ReadFile(handle_, out.data() + done, count, &got, &position) == 0 &&
                GetLastError() != ERROR_HANDLE_EOF) {
                fail(Errc::read_fault, GetLastError(), "read at " + std::to_string(offset + done));
            }
            if (got == 0) {
                break;
            }
            done += got;
        }
        return done;
    }

    void write_at(std::uint64_t offset, std::span<const std::uint8_t> data) override {
        std::size_t done = 0;
        while (done < data.size()) {
            OVERLAPPED position = place(offset + done);
            DWORD put = 0;
            const auto count = static_cast<DWORD>(std::min(data.size() - done, kMostAtOnce));
            if (WriteFile(handle_, data.data() + done, count, &put, &position) == 0 || put == 0) {
                const DWORD error = GetLastError();
                fail(write_error(error), error, "write at " + std::to_string(offset + done));
            }
            done += put;
        }
    }

    void reserve(std::uint64_t size) override {
        if (size > this->size()) {
            truncate(size);
        }
    }

    void truncate(std::uint64_t size) override {
        LARGE_INTEGER end{};
        end.QuadPart = static_cast<LONGLONG>(size);
        if (SetFilePointerEx(handle_, end, nullptr, FILE_BEGIN) == 0 ||
            SetEndOfFile(handle_) == 0) {
            const DWORD error = GetLastError();
            fail(write_error(error), error, "setting a length of " + std::to_string(size));
        }
    }

    std::uint64_t size() const override {
        LARGE_INTEGER size{};
        if (GetFileSizeEx(handle_, &size) == 0) {
            fail(Errc::read_fault, GetLastError(), "asking for the length");
        }
        return static_cast<std::uint64_t>(size.QuadPart);
    }

    void sync() override {
        if (FlushFileBuffers(handle_) == 0) {
            fail(Errc::write_fault, GetLastError(), "sync");
        }
    }

  private:
    HANDLE handle_;
};

} // namespace

std::unique_ptr<Backing> open_file(const std::string& native_path, Access access) {
    return std::make_unique<FileBacking>(native_path, access, OPEN_EXISTING);
}

std::unique_ptr<Backing> create_file(const std::string& native_path, bool replace) {
    auto file = std::make_unique<FileBacking>(native_path, Access::read_write,
                                              replace ? OPEN_ALWAYS : CREATE_NEW);
    file->truncate(0);
    return file;
}

} // namespace compound_file

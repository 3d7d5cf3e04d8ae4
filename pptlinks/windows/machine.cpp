// Windows knows its code page, its drives and the shares that it reaches; they cannot be told.
#include "pptlinks/machine.h"

#include "platform/platform.h"
#include "pptlinks/failure.h"
#include "pptlinks/text_encoding.h"

#include <vector>

namespace pptlinks {

namespace {

std::error_code last_error() {
    return {static_cast<int>(GetLastError()), std::system_category()};
}

WideString wide_path(const std::string& native) {
    return wide_from_utf8(native);
}

// Closed by the destructor.
class FileHandle {
  public:
    explicit FileHandle(HANDLE handle)
        : handle_(handle) {}
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    ~FileHandle() {
        if (is_open()) {
            CloseHandle(handle_);
        }
    }

    bool is_open() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return handle_; }

  private:
    HANDLE handle_;
};

// The security descriptor with the file's access control list; empty when there is no file, or it
// keeps none.
std::vector<std::uint8_t> access_list(const std::string& native) {
    const WideString path = wide_path(native);
    DWORD size = 0;
    GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<std::uint8_t> descriptor(size);
    if (GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, descriptor.data(), size, &size) ==
        FALSE) {
        descriptor.clear();
    }
    return descriptor;
}

// Letters for the name of a temporary file, another text at every call.
void fill_in(std::string& path, std::size_t count, std::uint32_t seed) {
    constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyz012345";
    for (std::size_t at = path.size() - count; at < path.size(); ++at) {
        path[at] = kLetters[seed % 32];
        seed /= 32;
    }
}

} // namespace

void use_code_page(std::uint32_t page) {
    if (page != GetACP()) {
        throw UsageError("--code-page: the code page of this system is " +
                         std::to_string(GetACP()) + " and cannot be changed for one program");
    }
}

void map_drive(const std::string& entry) {
    throw UsageError("--drive: '" + entry +
                     "' cannot be mapped, since Windows finds drives and shares by itself");
}

void trust_link_targets(bool trust) {
    if (trust) {
        throw UsageError("--trust-targets: Windows itself looks for the sources of linked objects");
    }
}

std::string native_path(const std::string& ansi_path) {
    return utf8_from_wide(wide_from_ansi(ansi_path));
}

FileIdentity identity_of(const std::string& native) {
    constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const FileHandle file(CreateFileW(wide_path(native).c_str(), FILE_READ_ATTRIBUTES, kShared,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    BY_HANDLE_FILE_INFORMATION found{};
    if (!file.is_open() || GetFileInformationByHandle(file.get(), &found) == FALSE) {
        return {};
    }
    const auto joined = [](DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; };
    return {found.dwVolumeSerialNumber, joined(found.nFileIndexHigh, found.nFileIndexLow),
            joined(found.nFileSizeHigh, found.nFileSizeLow),
            joined(found.ftLastWriteTime.dwHighDateTime, found.ftLastWriteTime.dwLowDateTime)};
}

bool is_writable(const std::string& native) {
    const DWORD attributes = GetFileAttributesW(wide_path(native).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) == 0;
}

std::error_code create_temporary_file(std::string& path) {
    constexpr int kTries = 100;
    const std::size_t count = path.size() - 1 - path.find_last_not_of('X');
    std::uint32_t seed = GetTickCount() * 32 + GetCurrentProcessId();
    for (int tries = 0; tries < kTries; ++tries) {
        fill_in(path, count, seed++);
        const FileHandle file(CreateFileW(wide_path(path).c_str(), GENERIC_WRITE, 0, nullptr,
                                          CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (file.is_open()) {
            return {};
        }
        if (GetLastError() != ERROR_FILE_EXISTS) {
            break;
        }
    }
    return last_error();
}

std::error_code finish_temporary_file(const std::string& path, const std::string& old) {
    const std::vector<std::uint8_t> access = access_list(old);
    if (!access.empty() && SetFileSecurityW(wide_path(path).c_str(), DACL_SECURITY_INFORMATION,
                                            const_cast<std::uint8_t*>(access.data())) == FALSE) {
        return last_error();
    }
    const FileHandle file(CreateFileW(wide_path(path).c_str(), GENERIC_WRITE, 0, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.is_open() || FlushFileBuffers(file.get()) == 0) {
        return last_error();
    }
    return {};
}

std::error_code rename_temporary_file(const std::string& path, const std::string& out) {
    if (MoveFileExW(wide_path(path).c_str(), wide_path(out).c_str(), MOVEFILE_REPLACE_EXISTING) ==
        FALSE) {
        return last_error();
    }
    return {};
}

void remove_temporary_file(const std::string& path) {
    const WideString wide = wide_path(path);
    SetFileAttributesW(wide.c_str(), FILE_ATTRIBUTE_NORMAL);
    DeleteFileW(wide.c_str());
}

} // namespace pptlinks

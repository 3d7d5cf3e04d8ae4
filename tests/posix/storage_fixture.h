// A folder of its own for each test, and storages and streams in few words. When a test ends, every
// compound file that it left behind must be sound.
#pragma once

#include "platform/base/com_ptr.h"
#include "platform/compound_file/compound_file.h"
#include "platform/posix/kernel.h"
#include "platform/posix/property_storage.h"
#include "platform/posix/storage.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

constexpr DWORD kReadRoot = STGM_READ | STGM_SHARE_DENY_WRITE;
constexpr DWORD kReadStream = STGM_READ | STGM_SHARE_EXCLUSIVE;
constexpr DWORD kReadWrite = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr std::uint64_t kWholeRest = ~std::uint64_t{0};

class StorageTest : public testing::Test {
  protected:
    StorageTest() {
        std::string pattern = (std::filesystem::temp_directory_path() / "storage-XXXXXX").string();
        folder_ = mkdtemp(pattern.data());
    }
    // By now the members of the test have closed their files.
    ~StorageTest() override {
        for (const auto& file : std::filesystem::directory_iterator(folder_)) {
            if (StgIsStorageFile(file.path().u16string().c_str()) == S_OK) {
                EXPECT_EQ(faults_of(file.path().string()), std::vector<std::string>{});
            }
        }
        std::filesystem::remove_all(folder_);
    }

    static std::vector<std::string> faults_of(const std::string& file) {
        using namespace compound_file;
        return CompoundFile::open(open_file(file, Access::read), Access::read)->check(false);
    }

    std::filesystem::path native(const std::string& name) const { return folder_ / name; }
    std::u16string path(const std::string& name) const { return native(name).u16string(); }

    ComPtr<IStorage> create(const std::string& name) const {
        ComPtr<IStorage> root;
        EXPECT_EQ(StgCreateDocfile(path(name).c_str(), kReadWrite | STGM_CREATE, 0, root.put()),
                  S_OK);
        return root;
    }

    HRESULT try_open(const std::string& name, DWORD mode) const {
        ComPtr<IStorage> root;
        return StgOpenStorage(path(name).c_str(), nullptr, mode, nullptr, 0, root.put());
    }

    ComPtr<IStorage> open(const std::string& name, DWORD mode = kReadRoot) const {
        ComPtr<IStorage> root;
        EXPECT_EQ(StgOpenStorage(path(name).c_str(), nullptr, mode, nullptr, 0, root.put()), S_OK);
        return root;
    }

    std::string bytes_of(const std::string& name) const {
        std::ifstream file(native(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::filesystem::path folder_;
};

// The low byte of the HRESULT that `call` gives in a process of its own.
template <class Call>
int low_byte_elsewhere(Call call) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(static_cast<int>(static_cast<std::uint32_t>(call()) & 0xFF));
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    return WEXITSTATUS(status);
}

inline std::string pattern(std::size_t size, unsigned seed = 1) {
    std::string text(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        text[i] = static_cast<char>(i * 31 + i / 251 + seed);
    }
    return text;
}

inline ComPtr<IStream> open_stream(const ComPtr<IStorage>& storage, const char16_t* name,
                                   DWORD mode = kReadStream) {
    ComPtr<IStream> stream;
    EXPECT_EQ(storage->OpenStream(name, nullptr, mode, 0, stream.put()), S_OK);
    return stream;
}

inline HRESULT try_stream(const ComPtr<IStorage>& storage, const char16_t* name,
                          DWORD mode = kReadStream) {
    ComPtr<IStream> stream;
    return storage->OpenStream(name, nullptr, mode, 0, stream.put());
}

inline void put(IStream* stream, const std::string& text) {
    ULONG written = 0;
    EXPECT_EQ(stream->Write(text.data(), static_cast<ULONG>(text.size()), &written), S_OK);
    EXPECT_EQ(written, text.size());
}

inline ComPtr<IStream> create_stream(const ComPtr<IStorage>& storage, const char16_t* name,
                                     const std::string& text = {}) {
    ComPtr<IStream> stream;
    EXPECT_EQ(storage->CreateStream(name, kReadWrite, 0, 0, stream.put()), S_OK);
    put(stream.get(), text);
    return stream;
}

inline ComPtr<IStorage> create_storage(const ComPtr<IStorage>& parent, const char16_t* name) {
    ComPtr<IStorage> storage;
    EXPECT_EQ(parent->CreateStorage(name, kReadWrite, 0, 0, storage.put()), S_OK);
    return storage;
}

inline HRESULT try_storage(const ComPtr<IStorage>& parent, const char16_t* name,
                           DWORD mode = kReadRoot) {
    ComPtr<IStorage> storage;
    return parent->OpenStorage(name, nullptr, mode, nullptr, 0, storage.put());
}

inline HRESULT seek(IStream* stream, std::int64_t move, DWORD origin = STREAM_SEEK_SET) {
    return stream->Seek({move}, origin, nullptr);
}

inline std::uint64_t position(IStream* stream) {
    ULARGE_INTEGER at{0};
    EXPECT_EQ(stream->Seek({0}, STREAM_SEEK_CUR, &at), S_OK);
    return at.QuadPart;
}

inline std::uint64_t size_of(IStream* stream) {
    STATSTG stat{};
    EXPECT_EQ(stream->Stat(&stat, STATFLAG_NONAME), S_OK);
    EXPECT_EQ(stat.pwcsName, nullptr);
    return stat.cbSize.QuadPart;
}

// The bytes from the position on, at most `count`.
inline std::string get(IStream* stream, std::size_t count) {
    std::string text(count, '\0');
    ULONG read = 0;
    EXPECT_EQ(stream->Read(text.data(), static_cast<ULONG>(count), &read), S_OK);
    text.resize(read);
    return text;
}

inline std::string content(IStream* stream) {
    EXPECT_EQ(seek(stream, 0), S_OK);
    return get(stream, size_of(stream) + 1);
}

inline std::string content(const ComPtr<IStorage>& storage, const char16_t* name) {
    return content(open_stream(storage, name).get());
}

// What Stat or an enumerator handed out: takes the name over.
inline std::u16string take_name(STATSTG& stat) {
    const std::u16string name = stat.pwcsName;
    CoTaskMemFree(stat.pwcsName);
    stat.pwcsName = nullptr;
    return name;
}

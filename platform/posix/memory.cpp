// Global memory blocks. A handle is the address of a small header that owns the bytes, so it stays
// the same when they move. All blocks are movable and zeroed. A block of no bytes is discarded: it
// has a handle and cannot be locked.
#include "platform/posix/file_handle.h"
#include "platform/posix/kernel.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <unistd.h>

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

struct Block {
    std::unique_ptr<std::uint8_t, Free> bytes;
    std::size_t size = 0;
    std::size_t locks = 0;
};

Block* block_of(HGLOBAL memory) {
    if (memory == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
    }
    return static_cast<Block*>(memory);
}

// Not through operator new: running out of system memory is the caller's affair to report, not that
// of a new-handler.
bool resize(Block& block, std::size_t size) {
    if (size == 0) {
        block.bytes.reset();
        block.size = 0;
        return true;
    }
    void* const moved = std::realloc(block.bytes.get(), size);
    if (moved == nullptr) {
        return false;
    }
    static_cast<void>(block.bytes.release());
    block.bytes.reset(static_cast<std::uint8_t*>(moved));
    if (size > block.size) {
        std::memset(block.bytes.get() + block.size, 0, size - block.size);
    }
    block.size = size;
    return true;
}

struct MachineMemory {
    std::size_t total = 0;
    std::size_t available = 0;
    std::size_t swap_total = 0;
    std::size_t swap_free = 0;
};

// The number behind a key of /proc/meminfo, in bytes; 0 when the key is not there.
std::size_t meminfo_value(std::string_view text, std::string_view key) {
    const std::size_t found = text.find(key);
    if (found == std::string_view::npos) {
        return 0;
    }
    text.remove_prefix(found + key.size());
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    std::size_t kibibytes = 0;
    std::from_chars(text.data(), text.data() + text.size(), kibibytes);
    return kibibytes * 1024;
}

// Takes no memory: who asks has often none left. The keys stand in the first kilobyte.
MachineMemory read_meminfo() {
    const platform::FileHandle file("/proc/meminfo", O_RDONLY);
    std::array<char, 4096> buffer{};
    const ssize_t count = read(file.descriptor(), buffer.data(), buffer.size());
    const std::string_view text(buffer.data(),
                                static_cast<std::size_t>(std::max(count, ssize_t{0})));
    MachineMemory memory;
    memory.total = meminfo_value(text, "MemTotal:");
    memory.available = meminfo_value(text, "MemAvailable:");
    memory.swap_total = meminfo_value(text, "SwapTotal:");
    memory.swap_free = meminfo_value(text, "SwapFree:");
    return memory;
}

MachineMemory machine_memory() {
    MachineMemory memory = read_meminfo();
    if (memory.total == 0) {
        const auto page = static_cast<std::size_t>(std::max(sysconf(_SC_PAGESIZE), 0L));
        memory.total = page * static_cast<std::size_t>(std::max(sysconf(_SC_PHYS_PAGES), 0L));
        memory.available = page * static_cast<std::size_t>(std::max(sysconf(_SC_AVPHYS_PAGES), 0L));
    }
    return memory;
}

} // namespace

HGLOBAL GlobalAlloc(UINT flags, std::size_t size) {
    if ((flags & GMEM_MOVEABLE) == 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    auto block = std::unique_ptr<Block>(new (std::nothrow) Block);
    if (block == nullptr || !resize(*block, size)) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    return block.release();
}

HGLOBAL GlobalReAlloc(HGLOBAL memory, std::size_t size, UINT) {
    Block* const block = block_of(memory);
    if (block == nullptr) {
        return nullptr;
    }
    if (!resize(*block, size)) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    return memory;
}

HGLOBAL GlobalFree(HGLOBAL memory) {
    delete static_cast<Block*>(memory);
    return nullptr;
}

void* GlobalLock(HGLOBAL memory) {
    Block* const block = block_of(memory);
    if (block == nullptr) {
        return nullptr;
    }
    if (block->bytes == nullptr) {
        SetLastError(ERROR_DISCARDED);
        return nullptr;
    }
    ++block->locks;
    return block->bytes.get();
}

BOOL GlobalUnlock(HGLOBAL memory) {
    Block* const block = block_of(memory);
    if (block == nullptr) {
        return FALSE;
    }
    if (block->locks == 0) {
        SetLastError(ERROR_NOT_LOCKED);
        return FALSE;
    }
    if (--block->locks == 0) {
        SetLastError(NO_ERROR);
        return FALSE;
    }
    return TRUE;
}

std::size_t GlobalSize(HGLOBAL memory) {
    const Block* const block = block_of(memory);
    return block == nullptr ? 0 : block->size;
}

void GlobalMemoryStatus(MEMORYSTATUS* status) {
    const MachineMemory memory = machine_memory();
    *status = {};
    status->dwLength = sizeof(MEMORYSTATUS);
    status->dwTotalPhys = memory.total;
    status->dwAvailPhys = memory.available;
    status->dwTotalPageFile = memory.total + memory.swap_total;
    status->dwAvailPageFile = memory.available + memory.swap_free;
    status->dwTotalVirtual = status->dwTotalPageFile;
    status->dwAvailVirtual = status->dwAvailPageFile;
    if (memory.total != 0) {
        status->dwMemoryLoad = static_cast<DWORD>(
            (memory.total - std::min(memory.available, memory.total)) * 100 / memory.total);
    }
}

// Global memory blocks. A handle is the address of a small header that owns the bytes, so it stays
// the same when they move. All blocks are movable and zeroed. A block of no bytes is discarded: it
// has a handle and cannot be locked.
#include "platform/posix/kernel.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
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

// /proc/meminfo in bytes; what it lacks stays 0.
MachineMemory read_meminfo() {
    MachineMemory memory;
    std::ifstream file("/proc/meminfo");
    std::string key;
    for (std::size_t kibibytes = 0; file >> key >> kibibytes; file.ignore(80, '\n')) {
        const std::size_t value = kibibytes * 1024;
        if (key == "MemTotal:") {
            memory.total = value;
        } else if (key == "MemAvailable:") {
            memory.available = value;
        } else if (key == "SwapTotal:") {
            memory.swap_total = value;
        } else if (key == "SwapFree:") {
            memory.swap_free = value;
        }
    }
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

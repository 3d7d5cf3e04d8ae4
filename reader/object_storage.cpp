#include "reader/object_storage.h"

#include "common_new/common/storage.h"
#include "plugin/checked_allocation.h"
#include "plugin/document_path.h"
#include "plugin/error_params.h"
#include "plugin/failure.h"
#include "plugin/state.h"
#include "plugin/status.h"
#include "reader/presentation.h"

#define ZLIB_CONST
#include <zlib.h>

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace ppt {

namespace {

constexpr std::uint16_t kCompressedInstance = 1;
constexpr std::size_t kRoomToGrow = 1000;
constexpr std::size_t kSizePrefix = 4;

// As an error parameter.
std::int32_t number(std::size_t size) {
    constexpr std::size_t kMost = 0x7FFFFFFF;
    return static_cast<std::int32_t>(std::min(size, kMost));
}

[[noreturn]] void throw_no_block(std::size_t size) {
    v_setErrorParamNumbers(number(size), n_getAvailablePhysicalMemory());
    throw static_cast<int>(status::kOutOfMemory);
}

[[noreturn]] void throw_zlib_failure(int zlib_result) {
    if (zlib_result == Z_MEM_ERROR) {
        throw std::bad_alloc();
    }
    v_setErrorParamTextAndNumber(document_path(), zlib_result);
    throw static_cast<int>(status::kBadDecompression);
}

[[noreturn]] void throw_too_large(std::size_t declared, std::size_t most) {
    v_setErrorParamNumbers(number(declared), number(most));
    throw static_cast<int>(status::kDamaged);
}

class Inflater {
  public:
    explicit Inflater(bytes::View source) {
        stream_.zalloc = allocate_for_zlib;
        stream_.zfree = free_for_zlib;
        stream_.next_in = source.data();
        stream_.avail_in = static_cast<uInt>(source.size());
        if (const int result = inflateInit(&stream_); result != Z_OK) {
            throw_zlib_failure(result);
        }
    }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;
    ~Inflater() { inflateEnd(&stream_); }

    // Continues into `out` and returns the number of bytes that came. Fewer than there is room for
    // only at the end.
    std::size_t read(std::span<std::uint8_t> out) {
        stream_.next_out = out.data();
        stream_.avail_out = static_cast<uInt>(out.size());
        const int result = inflate(&stream_, Z_NO_FLUSH);
        at_end_ = result == Z_STREAM_END;
        const bool went_on = at_end_ || result == Z_OK || result == Z_BUF_ERROR;
        if (!went_on) {
            throw_zlib_failure(result == Z_NEED_DICT ? Z_DATA_ERROR : result);
        }
        const bool is_cut_off = !at_end_ && stream_.avail_out > 0;
        if (is_cut_off) {
            throw_zlib_failure(Z_DATA_ERROR);
        }
        return out.size() - stream_.avail_out;
    }

    bool at_end() const { return at_end_; }

  private:
    z_stream stream_{};
    bool at_end_ = false;
};

} // namespace

MemoryBlock::MemoryBlock(std::size_t size)
    : memory_(GlobalAlloc(GMEM_MOVEABLE, size)) {
    if (memory_ == nullptr) {
        throw_no_block(size);
    }
}

MemoryBlock::MemoryBlock(MemoryBlock&& other) noexcept
    : memory_(std::exchange(other.memory_, nullptr)) {}

MemoryBlock::~MemoryBlock() {
    if (memory_ != nullptr) {
        GlobalFree(memory_);
    }
}

void MemoryBlock::resize(std::size_t size) {
    const HGLOBAL resized = GlobalReAlloc(memory_, size, GMEM_MOVEABLE | GMEM_ZEROINIT);
    if (resized == nullptr) {
        throw_no_block(size);
    }
    memory_ = resized;
}

LockedBytes::LockedBytes(const MemoryBlock& block)
    : memory_(block.handle()) {
    if (auto* const data = static_cast<std::uint8_t*>(GlobalLock(memory_))) {
        bytes_ = {data, block.size()};
    }
}

LockedBytes::~LockedBytes() {
    if (!bytes_.empty()) {
        GlobalUnlock(memory_);
    }
}

bool b_isCompressed(const PptRecord& storage_record) {
    return storage_record.header.instance() == kCompressedInstance;
}

MemoryBlock v_inflateObjectStorage(bytes::View body, std::size_t most) {
    constexpr std::size_t kFirstPiece = std::size_t{16} * 1024;
    const bool is_packed = body.size() >= kSizePrefix + 2 && body[kSizePrefix] == 0x78 &&
                           body[kSizePrefix + 1] == 0x9C;
    if (!is_packed) {
        throw static_cast<int>(status::kDamaged);
    }
    const std::size_t declared = bytes::load_u32(body, 0);
    const std::size_t allowed = std::min(declared, most);
    Inflater inflater(body.subspan(kSizePrefix));
    std::size_t size = 0;
    std::size_t room = std::min(allowed, std::max(kFirstPiece, 2 * body.size()));
    MemoryBlock block(room + kRoomToGrow);
    for (;;) {
        size += inflater.read(LockedBytes(block).get().subspan(size, room - size));
        if (inflater.at_end()) {
            break;
        }
        if (room == declared) {
            throw_zlib_failure(Z_BUF_ERROR);
        }
        if (room == allowed) {
            throw_too_large(declared, most);
        }
        room = std::min(allowed, 2 * room);
        block.resize(room + kRoomToGrow);
    }
    block.resize(size + kRoomToGrow);
    const LockedBytes locked(block);
    std::ranges::fill(locked.get().subspan(size), std::uint8_t{0});
    return block;
}

MemoryBlock object_storage(const PptRecord& storage_record) {
    if (b_isCompressed(storage_record)) {
        const std::uint64_t most =
            kFreelyUnpacked + kUnpackedPerByte * storage_record.owner->readable_size();
        constexpr std::uint64_t kAddressable = std::numeric_limits<std::size_t>::max();
        return v_inflateObjectStorage(storage_record.body,
                                      static_cast<std::size_t>(std::min(most, kAddressable)));
    }
    MemoryBlock block(storage_record.body.size());
    std::ranges::copy(storage_record.body, LockedBytes(block).get().begin());
    return block;
}

ComPtr<IStorage> open_object_storage(const MemoryBlock& block, bool read_only) {
    ComPtr<IStorage> storage;
    HRESULT result = S_OK;
    const std::int32_t status =
        j_openStorageOnMemory(block.handle(), read_only, storage.put(), nullptr, &result);
    if (state().keeps_going()) {
        require_memory_of(result);
    }
    require_success(status);
    return storage;
}

} // namespace ppt

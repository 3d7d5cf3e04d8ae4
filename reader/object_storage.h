// The storage of an OLE object out of its record ([MS-PPT] ExOleObjStg), in a movable global memory
// block. Failures are thrown as `int` status codes.
#pragma once

#include "platform/platform.h"
#include "reader/record.h"

#include <cstddef>
#include <span>

namespace ppt {

// Owns a movable block; its bytes are zero until they are written. A storage that was opened on the
// block must be released first.
class MemoryBlock {
  public:
    // Throws 8800 with the size and the available physical memory as error parameters.
    explicit MemoryBlock(std::size_t size);
    MemoryBlock(MemoryBlock&& other) noexcept;
    MemoryBlock& operator=(MemoryBlock&&) = delete;
    ~MemoryBlock();

    HGLOBAL handle() const { return memory_; }
    std::size_t size() const { return GlobalSize(memory_); }

    // Keeps the bytes up to the smaller of both sizes; throws as the constructor does.
    void resize(std::size_t size);

  private:
    HGLOBAL memory_;
};

// The bytes of a block while it is locked.
class LockedBytes {
  public:
    explicit LockedBytes(const MemoryBlock& block);
    LockedBytes(const LockedBytes&) = delete;
    LockedBytes& operator=(const LockedBytes&) = delete;
    ~LockedBytes();

    std::span<std::uint8_t> get() const { return bytes_; }

  private:
    HGLOBAL memory_;
    std::span<std::uint8_t> bytes_; // empty for an empty block
};

// Whether the record holds its storage compressed.
bool b_isCompressed(const PptRecord& storage_record);

// Decompresses the body of a compressed record: the size of the storage, then a zlib stream. The
// block is 1000 bytes larger than what came out, room for the storage to grow in place. 8140 unless
// the stream begins with 0x78 0x9C; 7155 with the document path and zlib's result for damaged data
// and for more of it than the size says; 8140 with both numbers for data that becomes more than
// `most` bytes. Memory follows the data that really comes out.
MemoryBlock v_inflateObjectStorage(bytes::View body, std::size_t most);

// A storage is unpacked up to this size and this many times that of its document, whichever zlib
// data the document holds: a thousandth of it can make as much. A quarter of what a load may take,
// since a storage that is nothing but directory entries takes nearly four times its size once open.
inline constexpr std::size_t kFreelyUnpacked = std::size_t{16} << 20;
inline constexpr std::size_t kUnpackedPerByte = 2;

// A block with the storage of a record of either form. Throws what v_inflateObjectStorage throws.
MemoryBlock object_storage(const PptRecord& storage_record);

// Opens the storage in the block, which must outlive it. 5700 when it cannot be opened; with the
// letter "k", which takes that for damage of the object, 9000 when memory ran out.
ComPtr<IStorage> open_object_storage(const MemoryBlock& block, bool read_only);

} // namespace ppt

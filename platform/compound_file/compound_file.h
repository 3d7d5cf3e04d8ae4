// The read/write compound file ([MS-CFB]): the whole of one file over one Backing, changed in place
// (direct mode). The only header of this folder that its users need besides backing.h.
//
// Invariants: the FAT alone says what is free; an entry id stays valid while its entry exists; user
// data is on the backing when a write returns, metadata when `flush` returns. One thread at a time.
// Failures are platform::Error; a call that throws has changed nothing unless it says so.
// docs/compound-files.md describes the format.
#pragma once

#include "platform/compound_file/backing.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace compound_file {

using EntryId = std::uint32_t;
inline constexpr EntryId kRoot = 0;
inline constexpr EntryId kNoEntry = 0xFFFFFFFF;

enum class EntryType : std::uint8_t { free = 0, storage = 1, stream = 2, root = 5 };
enum class Version : std::uint16_t { v3 = 3, v4 = 4 };

struct EntryInfo {
    std::u16string name;
    EntryType type = EntryType::free;
    std::uint64_t size = 0;
    std::array<std::uint8_t, 16> class_id{};
    std::uint32_t state_bits = 0;
    std::uint64_t created = 0; // 100 ns units since 1601, as stored
    std::uint64_t modified = 0;
};

// One open stream's bytes, shared by all its handles; holds no position. Valid while the
// CompoundFile lives and the entry exists.
class StreamNode {
  public:
    virtual ~StreamNode() = default;

    virtual std::uint64_t size() const = 0;

    // Reads up to the end of the stream and returns the number of bytes read. Where the stream
    // claims bytes that its chain or the file lacks, reading ends there, and a read from there on
    // is Errc::read_fault.
    virtual std::size_t read_at(std::uint64_t offset, std::span<std::uint8_t> out) = 0;

    // Writes all of `data`, growing the stream (with zeros up to `offset`) where needed.
    virtual void write_at(std::uint64_t offset, std::span<const std::uint8_t> data) = 0;

    // Grows with zeros or cuts. The file itself never becomes shorter.
    virtual void resize(std::uint64_t size) = 0;

    // Copies up to `count` bytes of `source` (of any compound file, this stream included) to
    // `to`, growing this stream once; returns the number of bytes copied, fewer only at the end
    // of the source. Cost: the runs that both streams have in common, without a buffer per sector.
    virtual std::uint64_t copy_range(StreamNode& source, std::uint64_t from, std::uint64_t to,
                                     std::uint64_t count) = 0;
};

class CompoundFile {
  public:
    // Writes nothing: who changed the file flushes it, since a destructor could not report a
    // failure.
    virtual ~CompoundFile() = default;

    // Opens what the backing holds. Throws Errc::not_compound_file when the signature is another's,
    // Errc::corrupt for damage that leaves nothing to read. Cost: O(sectors + entries).
    static std::unique_ptr<CompoundFile> open(std::unique_ptr<Backing> backing, Access access);

    // Writes an empty compound file to the backing and opens it.
    static std::unique_ptr<CompoundFile> create(std::unique_ptr<Backing> backing, Version version);

    virtual Version version() const = 0;
    virtual Access access() const = 0;

    // The entry's id, or kNoEntry. Names compare without regard to case, O(log n).
    virtual EntryId find(EntryId storage, std::u16string_view name) const = 0;
    virtual EntryInfo info(EntryId entry) const = 0;
    // In the order of the format: shorter names first, then by upper-cased units.
    virtual std::vector<EntryId> children(EntryId storage) const = 0;

    // Throws Errc::exists, invalid_name (empty, over 31 units, or with / \ : !), medium_full.
    virtual EntryId create_stream(EntryId storage, std::u16string_view name) = 0;
    virtual EntryId create_storage(EntryId storage, std::u16string_view name) = 0;
    // A storage goes with everything in it. Nodes of erased streams are empty and refuse changes.
    virtual void erase(EntryId entry) = 0;
    virtual void rename(EntryId entry, std::u16string_view name) = 0;
    virtual void set_class_id(EntryId entry, const std::array<std::uint8_t, 16>& class_id) = 0;
    virtual void set_state_bits(EntryId entry, std::uint32_t bits, std::uint32_t mask) = 0;
    virtual void set_times(EntryId entry, std::uint64_t created, std::uint64_t modified) = 0;

    // The stream's node, made anew in O(its sectors) unless somebody still holds it. Errc::access
    // comes from changes of a stream whose sectors a damaged file gives to another stream too.
    virtual std::shared_ptr<StreamNode> stream(EntryId entry) = 0;

    // Writes changed metadata in an order that leaves a readable file after any interruption. A
    // failure keeps everything unwritten and is remembered: every later change and flush that
    // cannot repair it throws it again.
    virtual void flush() = 0;

    // Every broken invariant of the file as a sentence; empty when all is well. What costs nothing
    // but space or time (sectors that nobody owns, counts in the header, colours of a tree ...) is
    // listed only with `strict`. Reads all metadata anew from the backing, so changes count once
    // flushed.
    virtual std::vector<std::string> check(bool strict) = 0;
};

} // namespace compound_file

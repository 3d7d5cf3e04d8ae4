// The bytes under a compound file: a file, a memory block or a test double. A backing knows bytes
// and locks, nothing of the format. All offsets and sizes are in bytes; every failure is thrown as
// platform::Error, and a call that throws has changed nothing unless it says so.
#pragma once

#include "platform/base/error.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace compound_file {

enum class Access { read, read_write };

class Backing {
  public:
    virtual ~Backing() = default;

    // Reads into the whole of `out`, or up to the end; returns the number of bytes read.
    virtual std::size_t read_at(std::uint64_t offset, std::span<std::uint8_t> out) = 0;

    // Writes all of `data`, growing the backing where it ends behind the current size. A failure
    // may leave a part written.
    virtual void write_at(std::uint64_t offset, std::span<const std::uint8_t> data) = 0;

    // Copies `count` bytes from another backing (or this one; overlapping ranges as memmove) and
    // returns how many were there to copy. A failure may leave a part written.
    virtual std::uint64_t copy_from(Backing& source, std::uint64_t from, std::uint64_t to,
                                    std::uint64_t count);

    // Makes room for a backing of `size` bytes, so that later writes below it do not run out of
    // space; the new bytes read as zero. Throws Errc::medium_full.
    virtual void reserve(std::uint64_t size) = 0;

    virtual void truncate(std::uint64_t size) = 0;
    virtual std::uint64_t size() const = 0;
    virtual void sync() = 0;

    // The file descriptor behind this backing, for bulk copies inside the kernel; -1 for none.
    virtual int descriptor() const { return -1; }
};

// Opens an existing file and takes the lock that belongs to the access: shared for read, exclusive
// for read_write, tried once. Throws Errc::not_found, path_not_found, access, write_protected,
// sharing, too_many_files or is_directory.
std::unique_ptr<Backing> open_file(const std::string& native_path, Access access);

// Creates a file (or empties one when `replace` is set, after its lock is held) for reading and
// writing, locked exclusively. Throws Errc::exists and what open_file throws.
std::unique_ptr<Backing> create_file(const std::string& native_path, bool replace);

} // namespace compound_file

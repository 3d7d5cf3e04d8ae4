// Copying between any two backings, through a buffer.
#include "platform/compound_file/backing.h"

#include <algorithm>
#include <vector>

namespace compound_file {
namespace {

constexpr std::uint64_t kCopyBytes = std::uint64_t{1024} * 1024;

} // namespace

std::uint64_t Backing::copy_from(Backing& source, std::uint64_t from, std::uint64_t to,
                                 std::uint64_t count) {
    const std::uint64_t there = source.size();
    count = from < there ? std::min(count, there - from) : 0;
    std::vector<std::uint8_t> buffer(static_cast<std::size_t>(std::min(count, kCopyBytes)));
    const bool backward = &source == this && to > from;
    for (std::uint64_t left = count; left > 0;) {
        const std::uint64_t piece = std::min(left, kCopyBytes);
        const std::uint64_t at = backward ? left - piece : count - left;
        const std::span<std::uint8_t> bytes(buffer.data(), static_cast<std::size_t>(piece));
        if (source.read_at(from + at, bytes) != piece) {
            throw platform::Error(platform::Errc::read_fault,
                                  "copy: the source ends before " +
                                      std::to_string(from + at + piece));
        }
        write_at(to + at, bytes);
        left -= piece;
    }
    return count;
}

} // namespace compound_file

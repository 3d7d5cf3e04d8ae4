// Little-endian values in byte sequences: the one bounded cursor for reading, and appending helpers
// for writing. No structure is ever laid over bytes.
//
// A cursor never reads outside its span: `need` and the reading functions report a shortage through
// `ok()`, which stays false from the first failed read on and makes every later read give 0, so a
// caller may read a whole record and look once. Nothing here throws or allocates, except the
// `append_` functions, which grow the vector they are given.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace bytes {

using Bytes = std::vector<std::uint8_t>;
using View = std::span<const std::uint8_t>;

class Cursor {
  public:
    explicit Cursor(View data)
        : data_(data) {}

    std::size_t position() const { return position_; }
    std::size_t remaining() const { return data_.size() - position_; }
    bool ok() const { return ok_; }

    // Moves to an absolute position; one behind the end makes the cursor fail.
    void seek(std::size_t position) {
        if (position > data_.size()) {
            ok_ = false;
        } else if (ok_) {
            position_ = position;
        }
    }

    void skip(std::size_t count) { take(count); }

    // The next `count` bytes, or an empty view (and a failed cursor) when there are fewer.
    View take(std::size_t count) {
        if (!ok_ || count > remaining()) {
            ok_ = false;
            return {};
        }
        const View taken = data_.subspan(position_, count);
        position_ += count;
        return taken;
    }

    std::uint8_t u8() { return static_cast<std::uint8_t>(little(1)); }
    std::uint16_t u16() { return static_cast<std::uint16_t>(little(2)); }
    std::uint32_t u32() { return static_cast<std::uint32_t>(little(4)); }
    std::uint64_t u64() { return little(8); }
    std::int32_t i32() { return static_cast<std::int32_t>(u32()); }

  private:
    std::uint64_t little(std::size_t width) {
        const View taken = take(width);
        std::uint64_t value = 0;
        for (std::size_t i = taken.size(); i-- > 0;) {
            value = (value << 8) | taken[i];
        }
        return value;
    }

    View data_;
    std::size_t position_ = 0;
    bool ok_ = true;
};

// Values at a place that the caller has already checked to lie inside `data`.
inline std::uint16_t load_u16(View data, std::size_t at) {
    return static_cast<std::uint16_t>(data[at] | (data[at + 1] << 8));
}

inline std::uint32_t load_u32(View data, std::size_t at) {
    return static_cast<std::uint32_t>(load_u16(data, at)) |
           (static_cast<std::uint32_t>(load_u16(data, at + 2)) << 16);
}

inline void store_u16(std::span<std::uint8_t> data, std::size_t at, std::uint16_t value) {
    data[at] = static_cast<std::uint8_t>(value);
    data[at + 1] = static_cast<std::uint8_t>(value >> 8);
}

inline void store_u32(std::span<std::uint8_t> data, std::size_t at, std::uint32_t value) {
    store_u16(data, at, static_cast<std::uint16_t>(value));
    store_u16(data, at + 2, static_cast<std::uint16_t>(value >> 16));
}

inline void append_u8(Bytes& out, std::uint8_t value) {
    out.push_back(value);
}

inline void append_u16(Bytes& out, std::uint16_t value) {
    out.push_back(static_cast<std::uint8_t>(value));
    out.push_back(static_cast<std::uint8_t>(value >> 8));
}

inline void append_u32(Bytes& out, std::uint32_t value) {
    append_u16(out, static_cast<std::uint16_t>(value));
    append_u16(out, static_cast<std::uint16_t>(value >> 16));
}

inline void append_u64(Bytes& out, std::uint64_t value) {
    append_u32(out, static_cast<std::uint32_t>(value));
    append_u32(out, static_cast<std::uint32_t>(value >> 32));
}

inline void append(Bytes& out, View data) {
    out.insert(out.end(), data.begin(), data.end());
}

} // namespace bytes

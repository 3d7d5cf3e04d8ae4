// A compound file whose metadata can be found and broken ([MS-CFB]). It is small enough that its
// header lists all FAT sectors: 7 MB in version 3, 446 MB in version 4.
#pragma once

#include "tests/support/record_builder.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

namespace limits {

inline constexpr std::uint32_t kNone = 0xFFFFFFFF;
inline constexpr std::uint32_t kEndOfChain = 0xFFFFFFFE;
inline constexpr std::size_t kEntry = 128;

// Fields of the header.
inline constexpr std::size_t kFatSectors = 44;
inline constexpr std::size_t kDirectory = 48;
inline constexpr std::size_t kFatList = 76;

// Fields of an entry.
inline constexpr std::size_t kLeft = 68;
inline constexpr std::size_t kRight = 72;
inline constexpr std::size_t kChild = 76;
inline constexpr std::size_t kFirst = 116;
inline constexpr std::size_t kSize = 120;

class CompoundImage {
  public:
    explicit CompoundImage(bytes::Bytes raw)
        : raw_(std::move(raw))
        , sector_(std::size_t{1} << bytes::load_u16(raw_, 30)) {
        for (std::uint32_t at = first_directory_sector(); at < 0xFFFFFFF0; at = link(at)) {
            directory_.push_back(at);
        }
    }

    bytes::Bytes take() { return std::move(raw_); }

    std::uint32_t get(std::size_t at) const { return bytes::load_u32(raw_, at); }
    void set(std::size_t at, std::uint32_t value) { bytes::store_u32(raw_, at, value); }

    std::uint32_t sectors() const { return static_cast<std::uint32_t>(raw_.size() / sector_ - 1); }
    std::size_t links_per_sector() const { return sector_ / 4; }
    std::uint32_t link(std::uint32_t sector) const { return get(link_at(sector)); }
    void set_link(std::uint32_t sector, std::uint32_t next) { set(link_at(sector), next); }

    std::uint32_t first_directory_sector() const { return get(kDirectory); }
    std::uint32_t last_sector(std::uint32_t first) const {
        while (link(first) < 0xFFFFFFF0) {
            first = link(first);
        }
        return first;
    }

    std::size_t entries() const { return directory_.size() * (sector_ / kEntry); }
    std::size_t entry(std::size_t id) const {
        return offset_of(directory_[id / (sector_ / kEntry)]) + id % (sector_ / kEntry) * kEntry;
    }
    std::size_t entry(std::u16string_view name) const {
        const bytes::Bytes wanted = presentation_builder::utf16(name);
        for (std::size_t id = 0; id < entries(); ++id) {
            if (std::equal(wanted.begin(), wanted.end(),
                           raw_.begin() + static_cast<std::ptrdiff_t>(entry(id)))) {
                return entry(id);
            }
        }
        throw std::logic_error("no such entry");
    }

    // Makes the FAT `count` sectors long. Behind the end of the file its links are those of chains,
    // but for the last few.
    void leave_free_only_the_last_links_of(std::size_t count) {
        for (std::uint32_t i = sectors(); i < links_per_sector() * get(kFatSectors); ++i) {
            set_link(i, kEndOfChain);
        }
        for (std::size_t i = get(kFatSectors); i < count; ++i) {
            set(kFatList + 4 * i, sectors());
            for (std::size_t k = 0; k < links_per_sector(); ++k) {
                bytes::append_u32(raw_, kEndOfChain);
            }
        }
        set(kFatSectors, static_cast<std::uint32_t>(count));
        constexpr std::size_t kFew = 20;
        for (std::size_t i = 1; i <= kFew; ++i) {
            set_link(static_cast<std::uint32_t>(count * links_per_sector() - i), kNone);
        }
    }

  private:
    std::size_t offset_of(std::uint32_t sector) const {
        return sector_ * (std::size_t{sector} + 1);
    }
    std::size_t link_at(std::uint32_t sector) const {
        const std::uint32_t fat = get(kFatList + 4 * (sector / links_per_sector()));
        return offset_of(fat) + 4 * (sector % links_per_sector());
    }

    bytes::Bytes raw_;
    std::size_t sector_;
    std::vector<std::uint32_t> directory_;
};

} // namespace limits

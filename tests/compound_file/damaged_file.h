// A small version 3 file whose metadata tests break on purpose, with the places of what they break.
#pragma once

#include "tests/compound_file/builders.h"

namespace compound_file::test {

inline constexpr std::uint32_t kFree = 0xFFFFFFFF;
inline constexpr std::uint32_t kEnd = 0xFFFFFFFE;

class DamagedFile : public testing::Test {
  protected:
    DamagedFile() {
        auto file = create_on(medium_, Version::v3);
        a_ = add_stream(*file, kRoot, u"a", pattern(kLarge, 1));
        b_ = add_stream(*file, kRoot, u"b", pattern(kLarge, 2));
        c_ = add_stream(*file, kRoot, u"c", pattern(kSmall, 3));
        d_ = add_stream(*file, kRoot, u"d", pattern(kSmall, 4));
        storage_ = file->create_storage(kRoot, u"storage");
        add_stream(*file, storage_, u"e", pattern(kLarge, 5));
        file->flush();
    }

    static constexpr std::size_t kLarge = 5000;
    static constexpr std::size_t kSmall = 200;
    static constexpr std::uint64_t kFat = 512; // the only FAT sector is sector 0

    std::uint32_t get(std::uint64_t at) const {
        std::array<std::uint8_t, 4> raw{};
        medium_->get(at, raw);
        return bytes::load_u32(raw, 0);
    }
    void set(std::uint64_t at, std::uint32_t value) {
        bytes::Bytes raw;
        bytes::append_u32(raw, value);
        medium_->put(at, raw);
    }

    static std::uint64_t link_at(std::uint32_t sector) { return kFat + 4 * sector; }
    std::uint32_t link(std::uint32_t sector) const { return get(link_at(sector)); }
    std::uint64_t mini_link_at(std::uint32_t mini) const { return 512 * (get(60) + 1) + 4 * mini; }

    // The first byte of a directory entry.
    std::uint64_t entry_at(EntryId id) const {
        std::uint32_t sector = get(48);
        for (EntryId skipped = 4; skipped <= id; skipped += 4) {
            sector = link(sector);
        }
        return 512 * (std::uint64_t{sector} + 1) + 128 * (id % 4);
    }
    std::uint64_t first_at(EntryId id) const { return entry_at(id) + 116; }
    std::uint64_t size_at(EntryId id) const { return entry_at(id) + 120; }
    std::uint32_t first(EntryId id) const { return get(first_at(id)); }

    std::shared_ptr<Medium> medium_ = std::make_shared<Medium>();
    EntryId a_, b_, c_, d_, storage_;
};

} // namespace compound_file::test

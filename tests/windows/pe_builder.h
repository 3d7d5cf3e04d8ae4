// Composes Windows libraries of either width that consist of their tables alone.
#pragma once

#include "tests/windows/pe_tables.h"

#include <string>
#include <utility>
#include <vector>

namespace pe::test {

// The single section lies at this address in memory and right behind the headers in the file.
inline constexpr std::uint32_t kSectionAddress = 0x1000;
inline constexpr std::size_t kSectionOffset = 0x200;

class PeBuilder {
  public:
    explicit PeBuilder(bool is_64_bit)
        : is_64_bit_(is_64_bit) {}

    PeBuilder& exports(const std::vector<std::string>& names, std::uint32_t nameless = 0) {
        std::vector<std::uint32_t> addresses;
        for (const std::string& name : names) {
            addresses.push_back(text(name));
        }
        const std::uint32_t list = here();
        for (const std::uint32_t address : addresses) {
            bytes::append_u32(section_, address);
        }
        const auto count = static_cast<std::uint32_t>(names.size());
        tables_[0] = here();
        for (const std::uint32_t value : {0u, 0u, 0u, 0u, 1u, count + nameless, count, 0u, list}) {
            bytes::append_u32(section_, value);
        }
        return *this;
    }

    // A name like "#7" is taken by its number.
    PeBuilder& import(const std::string& library, const std::vector<std::string>& names) {
        imports_.emplace_back(text(library), name_list(names));
        return *this;
    }

    PeBuilder& delayed_import(const std::string& library, const std::vector<std::string>& names) {
        const std::uint32_t name = text(library);
        const std::uint32_t list = name_list(names);
        tables_[13] = here();
        for (const std::uint32_t value : {1u, name, 0u, 0u, list, 0u, 0u, 0u}) {
            bytes::append_u32(section_, value);
        }
        section_.resize(section_.size() + 32);
        return *this;
    }

    bytes::Bytes build() {
        tables_[1] = here();
        for (const auto& [library, list] : imports_) {
            for (const std::uint32_t value : {list, 0u, 0u, library, list}) {
                bytes::append_u32(section_, value);
            }
        }
        section_.resize(section_.size() + 20);
        bytes::Bytes file(kSectionOffset);
        bytes::store_u32(file, 0x3C, kHeaderOffset);
        bytes::store_u32(file, kHeaderOffset, 0x4550);
        const std::size_t optional_size = (is_64_bit_ ? 112 : 96) + 8 * kTables;
        bytes::store_u16(file, kHeaderOffset + 6, 1); // sections
        bytes::store_u16(file, kHeaderOffset + 20, static_cast<std::uint16_t>(optional_size));
        const std::size_t optional = kHeaderOffset + 24;
        bytes::store_u16(file, optional, is_64_bit_ ? 0x20B : 0x10B);
        const std::size_t directory = optional + optional_size - 8 * kTables;
        bytes::store_u32(file, directory - 4, kTables);
        for (std::size_t i = 0; i < kTables; ++i) {
            bytes::store_u32(file, directory + 8 * i, tables_[i]);
        }
        const std::size_t header = optional + optional_size;
        bytes::store_u32(file, header + 12, kSectionAddress);
        bytes::store_u32(file, header + 16, static_cast<std::uint32_t>(section_.size()));
        bytes::store_u32(file, header + 20, kSectionOffset);
        bytes::append(file, section_);
        return file;
    }

  private:
    static constexpr std::size_t kHeaderOffset = 0x40;
    static constexpr std::size_t kTables = 16;

    std::uint32_t here() const {
        return kSectionAddress + static_cast<std::uint32_t>(section_.size());
    }

    std::uint32_t text(const std::string& value) {
        const std::uint32_t address = here();
        section_.insert(section_.end(), value.begin(), value.end());
        section_.push_back(0);
        return address;
    }

    std::uint32_t name_list(const std::vector<std::string>& names) {
        std::vector<std::uint64_t> entries;
        for (const std::string& name : names) {
            if (name.front() == '#') {
                entries.push_back(std::stoull(name.substr(1)) | 1ull << (is_64_bit_ ? 63 : 31));
            } else {
                entries.push_back(here());
                bytes::append_u16(section_, 0); // hint
                text(name);
            }
        }
        entries.push_back(0);
        const std::uint32_t address = here();
        for (const std::uint64_t entry : entries) {
            if (is_64_bit_) {
                bytes::append_u64(section_, entry);
            } else {
                bytes::append_u32(section_, static_cast<std::uint32_t>(entry));
            }
        }
        return address;
    }

    bool is_64_bit_;
    bytes::Bytes section_;
    std::uint32_t tables_[kTables] = {};
    std::vector<std::pair<std::uint32_t, std::uint32_t>> imports_;
};

} // namespace pe::test

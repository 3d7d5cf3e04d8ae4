// A backing for tests that counts calls, records writes, fails on demand, and outlives the files
// that are opened over it: the bytes are a Medium, shared by any number of TestBackings. Only pages
// that were written take memory, so a medium may be gigabytes long.
#pragma once

#include "platform/base/bytes.h"
#include "platform/compound_file/backing.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <memory>
#include <optional>

namespace compound_file::test {

struct Medium {
    static constexpr std::uint64_t kPageBytes = 4096;
    using Page = std::array<std::uint8_t, kPageBytes>;

    // What a process that is killed between two writes would have left behind.
    struct Write {
        std::uint64_t offset;
        bytes::Bytes data; // empty: the size became `offset`
    };

    std::map<std::uint64_t, Page> pages;
    std::uint64_t size = 0;

    std::uint64_t capacity = std::numeric_limits<std::uint64_t>::max(); // of a disk that gets full
    std::optional<std::uint64_t> writes_until_failure; // the failing write puts half of its bytes
    bool skips_copied_bytes = false;                   // copy_from only counts

    std::uint64_t reads = 0;
    std::uint64_t writes = 0;
    std::uint64_t copies = 0;
    std::uint64_t reserves = 0;

    bool records = false;
    std::vector<Write> log;

    void set_size(std::uint64_t new_size) {
        if (new_size < size) {
            pages.erase(pages.lower_bound((new_size + kPageBytes - 1) / kPageBytes), pages.end());
            if (const auto last = pages.find(new_size / kPageBytes); last != pages.end()) {
                std::fill(last->second.begin() + static_cast<std::ptrdiff_t>(new_size % kPageBytes),
                          last->second.end(), std::uint8_t{0});
            }
        }
        size = new_size;
    }

    void put(std::uint64_t offset, bytes::View data) {
        for (std::size_t done = 0; done < data.size();) {
            const std::uint64_t at = offset + done;
            const std::size_t count =
                std::min<std::size_t>(data.size() - done, kPageBytes - at % kPageBytes);
            auto& page = pages.try_emplace(at / kPageBytes).first->second;
            std::copy_n(data.begin() + static_cast<std::ptrdiff_t>(done), count,
                        page.begin() + static_cast<std::ptrdiff_t>(at % kPageBytes));
            done += count;
        }
        size = std::max(size, offset + data.size());
    }

    std::size_t get(std::uint64_t offset, std::span<std::uint8_t> out) const {
        const std::size_t there =
            offset < size
                ? static_cast<std::size_t>(std::min<std::uint64_t>(out.size(), size - offset))
                : 0;
        for (std::size_t done = 0; done < there;) {
            const std::uint64_t at = offset + done;
            const std::size_t count =
                std::min<std::size_t>(there - done, kPageBytes - at % kPageBytes);
            const auto target = out.begin() + static_cast<std::ptrdiff_t>(done);
            if (const auto page = pages.find(at / kPageBytes); page != pages.end()) {
                std::copy_n(page->second.begin() + static_cast<std::ptrdiff_t>(at % kPageBytes),
                            count, target);
            } else {
                std::fill_n(target, count, std::uint8_t{0});
            }
            done += count;
        }
        return there;
    }

    void apply(const Write& write) {
        if (write.data.empty()) {
            set_size(write.offset);
        } else {
            put(write.offset, write.data);
        }
    }
};

class TestBacking final : public Backing {
  public:
    explicit TestBacking(std::shared_ptr<Medium> medium)
        : medium_(std::move(medium)) {}

    std::size_t read_at(std::uint64_t offset, std::span<std::uint8_t> out) override {
        ++medium_->reads;
        return medium_->get(offset, out);
    }

    void write_at(std::uint64_t offset, std::span<const std::uint8_t> data) override {
        ++medium_->writes;
        if (offset + data.size() > std::max(medium_->capacity, medium_->size)) {
            throw platform::Error(platform::Errc::medium_full, "test: the disk is full");
        }
        if (medium_->writes_until_failure && (*medium_->writes_until_failure)-- == 0) {
            medium_->writes_until_failure = 0; // and from now on
            medium_->put(offset, data.first(data.size() / 2));
            throw platform::Error(platform::Errc::write_fault, "test: the write fails");
        }
        record({offset, bytes::Bytes(data.begin(), data.end())});
        medium_->put(offset, data);
    }

    std::uint64_t copy_from(Backing& source, std::uint64_t from, std::uint64_t to,
                            std::uint64_t count) override {
        ++medium_->copies;
        return medium_->skips_copied_bytes ? count : Backing::copy_from(source, from, to, count);
    }

    void reserve(std::uint64_t size) override {
        ++medium_->reserves;
        if (size <= medium_->size) {
            return;
        }
        if (size > medium_->capacity) {
            throw platform::Error(platform::Errc::medium_full, "test: the disk is full");
        }
        truncate(size);
    }

    void truncate(std::uint64_t size) override {
        record({size, {}});
        medium_->set_size(size);
    }

    std::uint64_t size() const override { return medium_->size; }
    void sync() override {}

  private:
    void record(Medium::Write write) {
        if (medium_->records) {
            medium_->log.push_back(std::move(write));
        }
    }

    std::shared_ptr<Medium> medium_;
};

} // namespace compound_file::test

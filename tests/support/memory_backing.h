// A compound file's backing in memory whose bytes can be had while the file is open and after it.
#pragma once

#include "platform/base/bytes.h"
#include "platform/compound_file/backing.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace presentation_builder {

class MemoryBacking : public compound_file::Backing {
  public:
    // The bytes are shared with whoever holds the pointer.
    explicit MemoryBacking(std::shared_ptr<bytes::Bytes> storage)
        : storage_(std::move(storage)) {}

    std::size_t read_at(std::uint64_t offset, std::span<std::uint8_t> out) override {
        if (offset >= storage_->size()) {
            return 0;
        }
        const std::size_t at = static_cast<std::size_t>(offset);
        const std::size_t count = std::min(out.size(), storage_->size() - at);
        std::copy_n(storage_->begin() + static_cast<std::ptrdiff_t>(at), count, out.begin());
        return count;
    }

    void write_at(std::uint64_t offset, std::span<const std::uint8_t> data) override {
        const std::size_t end = static_cast<std::size_t>(offset) + data.size();
        if (end > storage_->size()) {
            storage_->resize(end);
        }
        std::copy(data.begin(), data.end(),
                  storage_->begin() + static_cast<std::ptrdiff_t>(offset));
    }

    void reserve(std::uint64_t size) override {
        if (size > storage_->size()) {
            storage_->resize(static_cast<std::size_t>(size));
        }
    }

    void truncate(std::uint64_t size) override { storage_->resize(static_cast<std::size_t>(size)); }
    std::uint64_t size() const override { return storage_->size(); }
    void sync() override {}

  private:
    std::shared_ptr<bytes::Bytes> storage_;
};

} // namespace presentation_builder

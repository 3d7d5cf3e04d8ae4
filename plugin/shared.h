// A pointer to a value that its copies share and that nobody changes: as small as a plain pointer,
// since link tables hold millions. Counts without a lock; one thread at a time.
#pragma once

#include <cstdint>
#include <utility>

namespace ppt {

template <class Value>
class Shared {
  public:
    Shared() = default;
    explicit Shared(Value value)
        : held_(new Held{std::move(value), 1}) {}
    Shared(const Shared& other)
        : held_(other.held_) {
        if (held_ != nullptr) {
            ++held_->owners;
        }
    }
    Shared(Shared&& other) noexcept
        : held_(std::exchange(other.held_, nullptr)) {}
    Shared& operator=(Shared other) noexcept {
        std::swap(held_, other.held_);
        return *this;
    }
    ~Shared() {
        if (held_ != nullptr && --held_->owners == 0) {
            delete held_;
        }
    }

    // Null without a value.
    const Value* get() const { return held_ == nullptr ? nullptr : &held_->value; }

  private:
    struct Held {
        Value value;
        std::uint32_t owners;
    };

    Held* held_ = nullptr;
};

} // namespace ppt

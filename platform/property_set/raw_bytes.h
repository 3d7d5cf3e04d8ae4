// A stretch of bytes that keeps its owner alive: a part of the stream as it was read, or bytes of
// its own. Copies share the owner, so two properties at one offset cost nothing.
#pragma once

#include "platform/base/bytes.h"

#include <memory>
#include <utility>

namespace property_set {

class RawBytes {
  public:
    RawBytes() = default;
    RawBytes(std::shared_ptr<const bytes::Bytes> owner, bytes::View view)
        : owner_(std::move(owner))
        , view_(view) {}
    explicit RawBytes(bytes::Bytes owned)
        : owner_(std::make_shared<const bytes::Bytes>(std::move(owned)))
        , view_(*owner_) {}

    bytes::View view() const { return view_; }
    std::size_t size() const { return view_.size(); }

    // A part of this, with the same owner; the part lies inside.
    RawBytes part(std::size_t offset, std::size_t count) const {
        return {owner_, view_.subspan(offset, count)};
    }

  private:
    std::shared_ptr<const bytes::Bytes> owner_;
    bytes::View view_;
};

// `size` rounded up to the format's alignment.
constexpr std::size_t aligned(std::size_t size) {
    return (size + 3) & ~std::size_t{3};
}

// Appends zeros up to a multiple of 4.
inline void align(bytes::Bytes& out) {
    out.resize(aligned(out.size()));
}

} // namespace property_set

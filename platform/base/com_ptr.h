// An owning reference to a COM interface: one ComPtr, one reference, released by the destructor.
#pragma once

#include <utility>

template <class Interface>
class ComPtr {
  public:
    ComPtr() = default;

    // Takes over a reference that the caller holds; does not add one.
    explicit ComPtr(Interface* owned)
        : pointer_(owned) {}

    ComPtr(const ComPtr& other)
        : pointer_(other.pointer_) {
        if (pointer_ != nullptr) {
            pointer_->AddRef();
        }
    }

    ComPtr(ComPtr&& other) noexcept
        : pointer_(std::exchange(other.pointer_, nullptr)) {}

    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(pointer_, other.pointer_);
        return *this;
    }

    ~ComPtr() { reset(); }

    void reset() {
        if (Interface* released = std::exchange(pointer_, nullptr)) {
            released->Release();
        }
    }

    Interface* get() const { return pointer_; }
    Interface* operator->() const { return pointer_; }
    explicit operator bool() const { return pointer_ != nullptr; }

    // For calls that hand out a reference through an out-parameter; drops what was held.
    Interface** put() {
        reset();
        return &pointer_;
    }

    // The same for calls whose out-parameter is untyped.
    void** put_void() { return reinterpret_cast<void**>(put()); }

    // Gives the reference to the caller.
    Interface* detach() { return std::exchange(pointer_, nullptr); }

  private:
    Interface* pointer_ = nullptr;
};

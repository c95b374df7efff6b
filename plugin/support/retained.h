#pragma once

#import <Foundation/Foundation.h>
#include <utility>

namespace koru {

// Holds one Objective-C object retained: lets go of it when it is replaced, reset or destroyed. Empty is nil.
// The two ways in are named, so that ownership can be read where the holder is made: retain() takes a claim
// of its own, adopt() takes over the caller's. Not for autorelease pools. Use from one thread at a time.
template <typename T>
class Retained {
  public:
    constexpr Retained() noexcept = default;

    // Returns a holder with a claim of its own on the object; nil makes an empty one.
    [[nodiscard]] static Retained retain(T* object) { return Retained([object retain]); }

    // Returns a holder of the claim that the caller already has (after alloc, copy, mutableCopy).
    [[nodiscard]] static Retained adopt(T* object) noexcept { return Retained(object); }

    Retained(const Retained& other) : object_([other.object_ retain]) {}
    Retained(Retained&& other) noexcept : object_(std::exchange(other.object_, nil)) {}
    Retained& operator=(Retained other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Retained() { [object_ release]; }

    // Returns the object, borrowed: valid while it is held here.
    [[nodiscard]] T* get() const noexcept { return object_; }
    [[nodiscard]] explicit operator bool() const noexcept { return object_ != nil; }

    // Releases the object and holds nothing. The holder is empty already when the object's dealloc runs.
    void reset() { [std::exchange(object_, nil) release]; }

    // Holds nothing without releasing the object; the claim becomes the caller's.
    [[nodiscard]] T* leak() noexcept { return std::exchange(object_, nil); }

  private:
    constexpr explicit Retained(T* object) noexcept : object_(object) {}

    T* object_ = nil;
};

} // namespace koru

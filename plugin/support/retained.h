#pragma once

#import <Foundation/Foundation.h>
#include <utility>

namespace koru {

// Holds one Objective-C object and releases it when it is replaced, reset or destroyed. An empty holder has
// nil. The two ways to make one are named, so that ownership can be read there: retain() retains the object,
// adopt() takes over the caller's reference. Not for autorelease pools. Not thread-safe.
template <typename T>
class Retained {
  public:
    constexpr Retained() noexcept = default;

    // Returns a holder that retains the object; an empty one for nil.
    [[nodiscard]] static Retained retain(T* object) { return Retained([object retain]); }

    // Returns a holder that takes over the caller's reference (after alloc, copy, mutableCopy).
    [[nodiscard]] static Retained adopt(T* object) noexcept { return Retained(object); }

    Retained(const Retained& other) : object_([other.object_ retain]) {}
    Retained(Retained&& other) noexcept : object_(std::exchange(other.object_, nil)) {}
    Retained& operator=(Retained other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Retained() { [object_ release]; }

    // Returns the object, which is valid as long as it is held.
    [[nodiscard]] T* get() const noexcept { return object_; }
    [[nodiscard]] explicit operator bool() const noexcept { return object_ != nil; }

    // Releases the object. The holder is empty already when the object's dealloc runs.
    void reset() { [std::exchange(object_, nil) release]; }

    // Empties the holder without releasing the object, and returns it; the caller must release it.
    [[nodiscard]] T* leak() noexcept { return std::exchange(object_, nil); }

  private:
    constexpr explicit Retained(T* object) noexcept : object_(object) {}

    T* object_ = nil;
};

} // namespace koru

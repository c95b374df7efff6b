#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

namespace koru {

// A C++ object as an instance variable of an Objective-C object. It is made and destroyed by hand, since not
// every compiler does that. The memory must be zeroed at first, as that of instance variables is, and then
// holds no object.
template <typename T>
class Placed {
  public:
    // Makes the object; there must be none yet. An exception of its constructor passes through and leaves
    // none.
    template <typename... Arguments>
    void construct(Arguments&&... arguments) {
        new (bytes_) T(std::forward<Arguments>(arguments)...);
        alive_ = true;
    }

    // Destroys the object, if there is one.
    void destroy() {
        if (std::exchange(alive_, false)) {
            std::destroy_at(&get());
        }
    }

    [[nodiscard]] T& get() { return *std::launder(reinterpret_cast<T*>(bytes_)); }
    [[nodiscard]] decltype(auto) operator*() { return *get(); }
    [[nodiscard]] decltype(auto) operator->() { return get().get(); }

  private:
    alignas(T) std::byte bytes_[sizeof(T)];
    bool alive_;
};

} // namespace koru

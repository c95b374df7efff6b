#pragma once

// Text by characters (code points), so that no function cuts a surrogate pair in two.

#include <string>
#include <string_view>
#include <vector>

namespace host {

// A view of a text by characters, whose positions start at 0. The text must outlive it.
class Characters {
  public:
    explicit Characters(std::u16string_view text);

    size_t count() const { return count_; }

    // Returns [length] characters from [start] on, as far as the text has them.
    std::u16string_view slice(size_t start, size_t length) const;

    // Return the character to which the unit at [offset] belongs, and the offset of a character's first unit.
    size_t characterAt(size_t offset) const;
    size_t offsetOf(size_t character) const;

  private:
    std::u16string_view text_;
    size_t count_;
    bool simple_; // no surrogate pairs, so that each character is one unit
};

} // namespace host

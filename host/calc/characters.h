#pragma once

// Text by characters: code points, so that no function cuts a character in two.

#include <string>
#include <string_view>
#include <vector>

namespace host {

// A text with its characters counted. Positions start at 0. It refers to the text.
class Characters {
  public:
    explicit Characters(std::u16string_view text);

    size_t count() const { return count_; }

    // [length] characters from [start] on; what lies outside the text is left out.
    std::u16string_view slice(size_t start, size_t length) const;

    // The character that the unit at [offset] belongs to, and the first unit of a character.
    size_t characterAt(size_t offset) const;
    size_t offsetOf(size_t character) const;

  private:
    std::u16string_view text_;
    size_t count_;
    bool simple_; // no pairs of units: a character is a unit
};

} // namespace host

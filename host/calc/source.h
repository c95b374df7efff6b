#pragma once

// The text that a calculation or a script was read from, and the places in it that error messages name.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace host {

// A place as people count it: both start at 1, a column is one character (a code point), a tab included.
struct Place {
    uint32_t line;
    uint32_t column;
};

// A named text. Line ends are CR, LF or CRLF. Offsets are UTF-16 units from the start of the whole text.
class Source {
  public:
    // [name] is a file name, or empty for a calculation typed by hand; [firstLine] is where the text starts
    // in that file.
    Source(std::string name, std::u16string text, uint32_t firstLine = 1)
        : name_(std::move(name)), text_(std::move(text)), firstLine_(firstLine) {}

    const std::string& name() const { return name_; }
    std::u16string_view text() const { return text_; }

    // The place of [offset]; an offset past the end is the end.
    Place place(size_t offset) const;

    // Two lines in UTF-8, each indented by four spaces: the line of [offset] and a caret below the place. A
    // long line is cut around the place.
    std::string excerpt(size_t offset) const;

  private:
    std::string name_;
    std::u16string text_;
    uint32_t firstLine_;
};

using SourcePtr = std::shared_ptr<const Source>;

} // namespace host

#pragma once

// The text of a calculation or a script, and the places in it that error messages name.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace host {

// A place as users count it: line and column start at 1, and every character (code point), also a tab, is one
// column.
struct Place {
    uint32_t line;
    uint32_t column;
};

// A named text. Line ends are CR, LF or CRLF. Offsets are UTF-16 units from the start of the whole text.
class Source {
  public:
    // [name] is a file name, or empty for a calculation typed by hand; [firstLine] is the line of that file
    // in which the text starts.
    Source(std::string name, std::u16string text, uint32_t firstLine = 1)
        : name_(std::move(name)), text_(std::move(text)), firstLine_(firstLine) {}

    const std::string& name() const { return name_; }
    std::u16string_view text() const { return text_; }

    // Returns the place of [offset]; that of the end for an offset beyond it.
    Place place(size_t offset) const;

    // Returns two lines in UTF-8, each indented by four spaces: the line of [offset], and a caret below the
    // place. A long line is cut around the place.
    std::string excerpt(size_t offset) const;

  private:
    std::string name_;
    std::u16string text_;
    uint32_t firstLine_;
};

using SourcePtr = std::shared_ptr<const Source>;

} // namespace host

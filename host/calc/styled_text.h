#pragma once

// Texts with their styles, for the functions that take texts apart and join them.

#include "host/values/value.h"

#include <string>
#include <string_view>
#include <vector>

namespace host {

// The text of a value, read where it is, with its styles. The value must outlive it. Positions are in UTF-16
// units.
class StyledText {
  public:
    explicit StyledText(const Value& value);
    StyledText(const StyledText&) = delete;
    StyledText& operator=(const StyledText&) = delete;

    std::u16string_view text() const { return text_; }
    const StyledRuns& styles() const { return styles_; }

    // Returns the position of a [piece] of the text, which must be a view into text(). An empty one may be
    // any.
    size_t positionOf(std::u16string_view piece) const {
        return piece.empty() ? 0 : static_cast<size_t>(piece.data() - text_.data());
    }
    // Returns a piece of the text, as a view into text(), with its styles.
    Value slice(std::u16string_view piece) const;

  private:
    std::u16string written_; // the text of a value that is none
    std::u16string_view text_;
    const StyledRuns& styles_;
};

// A text that is put together from others, whose styles it keeps.
class StyledTextWriter {
  public:
    StyledTextWriter() = default;
    // Begins with a value, whose text is taken over without a copy when nothing else shares it.
    explicit StyledTextWriter(Value first);

    // Makes room for a text of [size] units.
    void reserve(size_t size) { text_.reserve(size); }

    // Appends a text without styles.
    void append(std::u16string_view plain);
    void append(char16_t unit) { append(std::u16string_view(&unit, 1)); }
    // Appends a value's text with its styles.
    void append(const Value& value);
    // Appends a piece of a text, as a view into its text(), with its styles.
    void append(const StyledText& from, std::u16string_view piece);
    // Appends a piece of a text as [change] makes it, run by run; each keeps its style.
    template <class Change>
    void appendChanged(const StyledText& from, std::u16string_view piece, Change change);

    // Returns the text; it is empty afterwards.
    Value take();

  private:
    std::u16string text_;
    StyledRuns styles_;
};

// Returns the values of a list with their styles, each followed by a carriage return. The values are views
// into the text of [from].
Value terminatedList(const StyledText& from, const std::vector<std::u16string_view>& values);

template <class Change>
void StyledTextWriter::appendChanged(const StyledText& from, std::u16string_view piece, Change change) {
    if (from.styles().empty()) {
        append(std::u16string_view(change(piece)));
        return;
    }
    const size_t begin = from.positionOf(piece);
    size_t done = 0;
    for (const StyledRun& run : slicedRuns(from.styles(), begin, begin + piece.size())) {
        const std::u16string changed(change(piece.substr(done, run.end - done)));
        if (!changed.empty()) {
            appendRuns(styles_, text_.size(), {{changed.size(), run.style}}, changed.size());
            text_ += changed;
        }
        done = run.end;
    }
}

} // namespace host

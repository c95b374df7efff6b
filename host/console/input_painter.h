#pragma once

// Colours and a hint for a line that another library edits. That library draws the text without colours and knows
// where each character stands; this draws the same characters over it in their colours, and the hint on the row
// below. Before the library draws again, clearHint() must have removed the hint.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// What the editor shows: the typed text behind a prompt.
struct EditorView {
    std::wstring_view text;
    size_t cursor = 0; // in the text
    size_t promptWidth = 0;
    size_t columns = 80; // of the terminal
    size_t rows = 24;
};

class InputPainter {
  public:
    // Draws [view] with an attribute for each character (see Palette; empty for none) and the hint below. The
    // cursor is where it was afterwards. Draws nothing when the text does not fit the terminal, or has characters
    // whose width is uncertain.
    void draw(const EditorView& view, const std::vector<std::string_view>& attributes,
              const std::string& hint);

    // Removes the hint.
    void clearHint();

    // Removes the hint and moves the cursor to the line below the text.
    void leave(const EditorView& view);

    // Removes prompt, text and hint; the cursor is then where the prompt was.
    void erase(const EditorView& view);

  private:
    struct Place {
        size_t row = 0;
        size_t column = 0;
    };
    // Where cursor and end of the text stand, counted from the prompt; ok when that is certain.
    struct Layout {
        Place cursor;
        Place end;
        bool ok = true;
    };
    // Return where the cursor stands after a character, and where a character is drawn.
    static Place after(Place at, wchar_t c, size_t columns);
    static Place before(Place at, wchar_t c, size_t columns);
    static Layout layoutOf(const EditorView& view);

    Layout drawn_; // with the hint
    bool hasHint_ = false;
};

} // namespace host

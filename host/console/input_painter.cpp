#include "host/console/input_painter.h"

#include <climits>
#include <cstdio>
#include <cwchar>
#include <cwctype>

namespace host {

namespace {

// Moves the cursor by rows or columns; the letter says where to: A up, B down, C right.
std::string moved(size_t count, char direction) {
    return count == 0 ? "" : "\x1b[" + std::to_string(count) + direction;
}

void write(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

// Returns a character in the terminal's encoding.
std::string encoded(wchar_t c) {
    char bytes[MB_LEN_MAX];
    std::mbstate_t state{};
    const size_t size = std::wcrtomb(bytes, c, &state);
    return size == static_cast<size_t>(-1) ? "?" : std::string(bytes, size);
}

constexpr size_t kTab = 8;

// Returns the columns that a character takes; 0 when that is uncertain. A line end takes none, a tab at least one.
size_t widthOf(wchar_t c) {
    const int width = c == L'\n' || c == L'\t' ? 1 : wcwidth(c);
    return width > 0 ? static_cast<size_t>(width) : 0;
}

} // namespace

// Follows the editing library: a full row ends at once, a wide character never stands in two rows.
InputPainter::Place InputPainter::after(Place at, wchar_t c, size_t columns) {
    const auto forward = [&](size_t width) {
        at.column += width;
        if (at.column >= columns) {
            at = {at.row + 1, 0};
        }
    };
    if (c == L'\n') {
        return {at.row + 1, 0};
    }
    if (c != L'\t') {
        forward(widthOf(c));
        return at;
    }
    do {
        forward(1);
    } while (at.column % kTab != 0);
    return at;
}

InputPainter::Place InputPainter::before(Place at, wchar_t c, size_t columns) {
    return widthOf(c) > 1 && at.column + widthOf(c) > columns ? Place{at.row + 1, 0} : at;
}

InputPainter::Layout InputPainter::layoutOf(const EditorView& view) {
    Layout layout;
    Place at{0, view.promptWidth};
    for (size_t i = 0; i < view.text.size(); ++i) {
        layout.ok = layout.ok && widthOf(view.text[i]) > 0;
        at = before(at, view.text[i], view.columns);
        layout.cursor = i == view.cursor ? at : layout.cursor;
        at = after(at, view.text[i], view.columns);
    }
    layout.cursor = view.cursor == view.text.size() ? at : layout.cursor;
    layout.end = at;
    return layout;
}

void InputPainter::draw(const EditorView& view, const std::vector<std::string_view>& attributes,
                        const std::string& hint) {
    if (view.text.empty() && hint.empty()) {
        return;
    }
    const Layout layout = layoutOf(view);
    if (!layout.ok || layout.end.row + 2 >= view.rows || view.columns <= view.promptWidth) {
        return;
    }
    std::string out = moved(layout.cursor.row, 'A') + "\r" + moved(view.promptWidth, 'C');
    Place at{0, view.promptWidth};
    std::string_view attribute;
    const auto set = [&](std::string_view wanted) {
        if (wanted != attribute) {
            out += "\x1b[m";
            out += wanted.empty() ? "" : "\x1b[" + std::string(wanted) + "m";
            attribute = wanted;
        }
    };
    for (size_t i = 0; i < view.text.size(); ++i) {
        const wchar_t c = view.text[i];
        at = before(at, c, view.columns);
        const Place next = after(at, c, view.columns);
        if (c != L'\n' && c != L'\t') {
            set(attributes[i]);
            out += encoded(c);
        }
        const bool isDrawn =
            i + 1 < view.text.size() && view.text[i + 1] != L'\n' && view.text[i + 1] != L'\t';
        if (c == L'\t') {
            out += next.row > at.row ? "\r\n" + moved(next.column, 'C') : moved(next.column - at.column, 'C');
        } else if (next.row > at.row && (c == L'\n' || !isDrawn)) {
            out += "\r\n"; // elsewhere the terminal begins the next row with the next character
        }
        at = next;
    }
    set("");
    hasHint_ = !hint.empty();
    if (hasHint_) {
        out += "\r\n" + hint + moved(1, 'A');
    }
    out += moved(layout.end.row - layout.cursor.row, 'A') + "\r" + moved(layout.cursor.column, 'C');
    drawn_ = layout;
    write(out);
}

void InputPainter::clearHint() {
    if (hasHint_) {
        const size_t down = drawn_.end.row - drawn_.cursor.row + 1;
        write(moved(down, 'B') + "\r\x1b[J" + moved(down, 'A') + moved(drawn_.cursor.column, 'C'));
    }
    hasHint_ = false;
}

void InputPainter::leave(const EditorView& view) {
    clearHint();
    const Layout layout = layoutOf(view);
    write(moved(layout.end.row - layout.cursor.row, 'B') + "\r\n");
}

void InputPainter::erase(const EditorView& view) {
    clearHint();
    write(moved(layoutOf(view).cursor.row, 'A') + "\r\x1b[J");
}

} // namespace host

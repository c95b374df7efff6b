#pragma once

// A text that is open in an editor. Its positions are the editor's: lines from 0, UTF-16 units from 0.

#include "host/check/checker.h"

#include <filesystem>
#include <string>
#include <vector>

namespace host {

struct EditorPosition {
    size_t line = 0;
    size_t character = 0;
};

class Document {
  public:
    // [file] tells by its ending what the text is; another one is a calculation.
    Document(std::filesystem::path file, std::u16string text);

    const std::filesystem::path& file() const { return file_; }
    FileKind kind() const { return kind_; }
    const std::u16string& text() const { return text_; }
    SourcePtr source() const;

    void setText(std::u16string text);
    // Replaces what stands between two positions.
    void replace(EditorPosition begin, EditorPosition end, std::u16string_view with);

    // The offset of a position; what lies outside the text is brought to its line's end, or the text's.
    size_t offset(EditorPosition position) const;
    EditorPosition position(size_t offset) const;
    // The position of a place as diagnostics give it: lines and characters (code points) from 1.
    EditorPosition position(Place place) const;

    // The first offset of the word, with its dollar signs, that ends at or goes on after [offset].
    size_t wordBegin(size_t offset) const;
    std::u16string wordAt(size_t offset) const;
    // The text of the line up to [offset].
    std::u16string lineBefore(size_t offset) const;

  private:
    std::filesystem::path file_;
    FileKind kind_;
    std::u16string text_;
    std::vector<size_t> lines_; // where they begin
};

} // namespace host

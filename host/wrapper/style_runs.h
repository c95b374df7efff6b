#pragma once

// Styles of characters, and the styles of a text's characters as runs.

#include "FMWrapper/FMXTextStyle.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace host {

struct ColorObject {
    fmx::ColorChannel red = 0;
    fmx::ColorChannel green = 0;
    fmx::ColorChannel blue = 0;
    fmx::ColorChannel alpha = 255;

    friend bool operator==(const ColorObject&, const ColorObject&) = default;
};

// A style. An attribute that is not enabled keeps its value for when it is enabled again.
struct CharacterStyleObject {
    fmx::FontID font = 0;
    fmx::FontSize size = 0;
    ColorObject color;
    fmx::Face faces = 0;       // the faces that are set
    fmx::Face statedFaces = 0; // the faces that the style sets or clears
    bool hasFont = false;
    bool hasSize = false;
    bool hasColor = false;

    // Returns the style of text that has none of its own: font 0, 12 points, plain, black.
    static CharacterStyleObject standard();

    bool saysNothing() const { return !hasFont && !hasSize && !hasColor && statedFaces == 0; }

    void setFaces(fmx::Face only);
    void addFaces(fmx::Face more);
    void dropFaces(fmx::Face fewer);
    bool hasFaces(fmx::Face wanted) const;

    // Takes over every attribute that the other style has enabled.
    void overlay(const CharacterStyleObject& other);
    // Disables every attribute that the other style has enabled with the same value.
    void forget(const CharacterStyleObject& other);

    friend bool operator==(const CharacterStyleObject& left, const CharacterStyleObject& right);
};

// The styles of a text's characters. Runs follow each other from the start of the text; characters after the
// last run have no style of their own, so that plain text has no runs at all. Positions and counts are in
// UTF-16 units and must lie within the text.
class StyleRuns {
  public:
    struct Run {
        size_t end; // the position where the next run starts
        CharacterStyleObject style;
    };

    bool isEmpty() const { return runs_.empty(); }
    void clear() { runs_.clear(); }

    // Returns the style of a character: the standard style overlaid with its own.
    CharacterStyleObject at(size_t position) const;

    // Overlays a range of characters with a style.
    void apply(const CharacterStyleObject& style, size_t position, size_t count);
    // Removes a style's attributes from all characters (CharacterStyleObject::forget).
    void forget(const CharacterStyleObject& style);

    // Returns the styles of a range.
    StyleRuns part(size_t position, size_t count) const;
    // Inserts the styles of [count] characters.
    void insert(size_t position, const StyleRuns& inserted, size_t count);
    void erase(size_t position, size_t count);

    // Appends the style of the [count] characters behind the last run.
    void append(size_t count, const CharacterStyleObject& style);
    const std::vector<Run>& runs() const { return runs_; }

  private:
    using Runs = std::vector<Run>;

    Runs::iterator splitAt(size_t position);
    void join();

    Runs runs_;
};

} // namespace host

#pragma once

// How characters look, and the looks of the characters of a text, run by run.

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

// A style. What is not enabled keeps its value for when it is enabled again.
struct CharacterStyleObject {
    fmx::FontID font = 0;
    fmx::FontSize size = 0;
    ColorObject color;
    fmx::Face faces = 0;       // those that are set
    fmx::Face statedFaces = 0; // those that the style says something about, set or not
    bool hasFont = false;
    bool hasSize = false;
    bool hasColor = false;

    // The style of text that was given none: font 0, 12 points, plain, black.
    static CharacterStyleObject standard();

    bool saysNothing() const { return !hasFont && !hasSize && !hasColor && statedFaces == 0; }

    void setFaces(fmx::Face only);
    void addFaces(fmx::Face more);
    void dropFaces(fmx::Face fewer);
    bool hasFaces(fmx::Face wanted) const;

    // Takes over what another style says.
    void overlay(const CharacterStyleObject& other);
    // Forgets what another style says in the same way.
    void forget(const CharacterStyleObject& other);

    friend bool operator==(const CharacterStyleObject& left, const CharacterStyleObject& right);
};

// The styles of a text's characters. Runs lie one behind the other from the start of the text; characters
// behind the last run have no style of their own, so that plain text has no runs at all. Positions and counts
// are of UTF-16 units and lie within the text.
class StyleRuns {
  public:
    bool isEmpty() const { return runs_.empty(); }
    void clear() { runs_.clear(); }

    // The style of a character: the standard one, with what was given to it.
    CharacterStyleObject at(size_t position) const;

    // Gives a style to characters; takes one away from all.
    void apply(const CharacterStyleObject& style, size_t position, size_t count);
    void forget(const CharacterStyleObject& style);

    // The styles of a range alone.
    StyleRuns part(size_t position, size_t count) const;
    // Makes room for [count] characters that have the styles of [inserted].
    void insert(size_t position, const StyleRuns& inserted, size_t count);
    void erase(size_t position, size_t count);

  private:
    struct Run {
        size_t end; // where the run behind it starts
        CharacterStyleObject style;
    };
    using Runs = std::vector<Run>;

    Runs::iterator splitAt(size_t position);
    void append(size_t count, const CharacterStyleObject& style);
    void join();

    Runs runs_;
};

} // namespace host

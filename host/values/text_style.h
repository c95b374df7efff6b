#pragma once

// Styles of text: font, size, colour and faces, run by run.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace host {

// The style that a run of characters has of its own; what is not set is the default.
struct TextStyle {
    std::u16string font;           // empty for none
    int32_t size = 0;              // in points; 0 for none
    std::optional<uint32_t> color; // red * 65536 + green * 256 + blue
    uint32_t faces = 0;            // the sum of the calculation language's constants Bold, Italic ...

    friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

// A run: a style up to the position [end] in the text, in UTF-16 units. It begins where the run before it
// ends.
struct StyledRun {
    size_t end;
    TextStyle style;
};

// The runs of a text in order; the last one ends with the text. Empty for a text without styles.
using StyledRuns = std::vector<StyledRun>;

// Appends the runs [added] of a text of [size] units to the [runs] of a text of [before] units.
void appendRuns(StyledRuns& runs, size_t before, const StyledRuns& added, size_t size);

// Returns the runs of the units from [begin] up to [end].
StyledRuns slicedRuns(const StyledRuns& runs, size_t begin, size_t end);

// Returns the runs with neighbours of equal style joined; empty when no run has a style.
StyledRuns simplifiedRuns(StyledRuns runs);

} // namespace host

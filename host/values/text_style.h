#pragma once

// Styles of text: font, size, colour and faces, run by run.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace host {

// What a run of characters has of its own; what is not set is as everywhere else.
struct TextStyle {
    std::u16string font;           // empty for none
    int32_t size = 0;              // in points; 0 for none
    std::optional<uint32_t> color; // red * 65536 + green * 256 + blue
    uint32_t faces = 0;            // the constants Bold, Italic ... added up

    friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

// A style up to a place in the text, in UTF-16 units; it begins where the run before it ends.
struct StyledRun {
    size_t end;
    TextStyle style;
};

// The runs of a text in order; the last one ends with the text. Empty for a text without styles.
using StyledRuns = std::vector<StyledRun>;

// Adds the runs of a text of [size] units behind [before] units that have [runs] already.
void appendRuns(StyledRuns& runs, size_t before, const StyledRuns& added, size_t size);

// The runs of the units from [begin] to [end].
StyledRuns slicedRuns(const StyledRuns& runs, size_t begin, size_t end);

// Joins neighbours of one style; nothing is left when no run has any.
StyledRuns simplifiedRuns(StyledRuns runs);

} // namespace host

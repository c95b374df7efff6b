#pragma once

// The styles of a text of the interface as those of a value.

#include "host/values/text_style.h"

namespace host {

class StyleRuns;

// Returns the styles of a text of [size] units, and makes them. What the other form has no place for (opacity,
// a face that is cleared) is dropped; a font or size that the interface cannot number is left out.
StyledRuns styledRuns(const StyleRuns& runs, size_t size);
StyleRuns styleRuns(const StyledRuns& runs);

} // namespace host

#pragma once

// The styles of a text of the interface as those of a value, for the program that runs the plug-ins: the
// interface itself tells them character by character only.

#include "host/values/text_style.h"
#include "host/wrapper/interface.h"

namespace host {

class StyleRuns;

// Returns the styles of a text of [size] units, and makes them. What the other form has no place for (opacity,
// a face that is cleared) is dropped; a font or size that the interface cannot number is left out.
StyledRuns styledRuns(const StyleRuns& runs, size_t size);
StyleRuns styleRuns(const StyledRuns& runs);

} // namespace host

extern "C" {

// Sets [runs] to the styles of a text.
FMX_API void FM_Host_GetStyles(const fmx::Text& text, host::StyledRuns& runs, fmx::_fmxcpt& block) noexcept;

// Sets the styles of a text's characters, in place of those that they had.
FMX_API void FM_Host_SetStyles(fmx::Text& text, const host::StyledRuns& runs, fmx::_fmxcpt& block) noexcept;

} // extern "C"

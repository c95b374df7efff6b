#pragma once

#include "plugin/support/host_interface.h"
#import <Foundation/Foundation.h>

namespace koru {

// Texts cross between the host and the plug-in as UTF-16.

// Returns the host's text as a string of exactly its units; nil when it is empty.
[[nodiscard]] NSString* stringFromText(const fmx::Text& text);

// Returns an argument as a string; nil when it is empty or the call has fewer arguments.
[[nodiscard]] NSString* textArgument(const fmx::DataVect& arguments, fmx::uint32 position);

// Gives the host's text the string's units, up to the first that is 0; nil is the empty text.
void assignString(fmx::Text& text, NSString* string);

} // namespace koru

#pragma once

#include "plugin/support/host_interface.h"
#import <Foundation/Foundation.h>

namespace koru {

// Conversions of text between the host and the plug-in, in UTF-16.

// Returns the host's text as a string with exactly the same units; nil when it is empty.
[[nodiscard]] NSString* stringFromText(const fmx::Text& text);

// Returns an argument as a string; nil when it is empty or the call has fewer arguments.
[[nodiscard]] NSString* textArgument(const fmx::DataVect& arguments, fmx::uint32 position);

// Releases the strings of arguments that are kept for the calls to come. For tests.
void forgetStringsForTests();

// Sets the host's text to the string's units, up to the first that is 0; to empty text for nil.
void assignString(fmx::Text& text, NSString* string);

} // namespace koru

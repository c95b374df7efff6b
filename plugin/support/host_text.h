#pragma once

#include "plugin/support/host_interface.h"
#import <Foundation/Foundation.h>
#include <vector>

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

// A long text that is joined of many short strings. An NSMutableString takes several times as long for each.
class JoinedText {
  public:
    // Append a string's units, none of nil, and one unit.
    void append(NSString* string);
    void append(TextUnit unit) { units_.push_back(unit); }

    // Sets the host's text to the units, up to the first that is 0.
    void assignTo(fmx::Text& text);

  private:
    std::vector<TextUnit> units_;
};

} // namespace koru

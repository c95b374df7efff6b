#pragma once

// The strings that the framework makes of stored texts.

#import <Foundation/Foundation.h>
#include <optional>
#include <string>
#include <string_view>

namespace addressbook {

// Returns an immutable string of UTF-8 text, as it is: half of a surrogate pair stays, and so does a leading
// byte-order mark, neither of which Foundation's own strings keep. It is one piece of memory, with its
// characters and its references, and takes a fifth of the time of one of Foundation's to make and free: most
// of what a program reads of an address book is strings. Autoreleased.
NSString* textObject(std::string_view utf8);

// Returns the UTF-8 text of a string that textObject() made; nothing for other strings.
std::optional<std::string> textOf(NSString* string);

} // namespace addressbook

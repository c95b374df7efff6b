#pragma once

#include "plugin/support/host_interface.h"

// The plug-in's display strings: the prototypes of the functions, and the strings that the host asks for.
// They are in the localized string table "KORUFMPlugin" of the plug-in's bundle, where string number n has
// the key "KORUFMPlugin n". All functions need an autorelease pool in place.

// Copies a string and a terminating 0 into a buffer of [capacity] UTF-16 units, and returns the string's
// length. Returns 0 and leaves the buffer alone when there is no such string, or when string and terminator
// would fill the buffer or more: a string is never cut.
long Sub_OSXLoadString(unsigned long id, unsigned short* buffer, long capacity);

// Sets the text to string number [id], or to string 1 for 131, the host's number for the options string; to
// empty text when the string is missing or longer than 1022 units. With [cutAtParenthesis], leaves out
// everything from the first "(" on, so that of a prototype the function's name remains.
void Do_GetString(unsigned long id, koru::OwnedText& text, bool cutAtParenthesis);

// Answers the host's request for a string by its kind (128 name, 129 help text, 131 options): copies it into
// the buffer as Sub_OSXLoadString does. The host's language is ignored; the system's counts.
void Do_GetString(unsigned long kind, unsigned int language, int capacity, unsigned short* buffer);

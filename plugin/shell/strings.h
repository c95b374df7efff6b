#pragma once

#include "plugin/support/host_interface.h"

// The display strings of the plug-in: prototypes of the functions, and what the host asks for by kind. They
// stand in the localized string table "KORUFMPlugin" of the plug-in's bundle; string number n has the key
// "KORUFMPlugin n". All need an autorelease pool in place.

// Copies a string, with a 0 behind it, into a buffer of so many UTF-16 units, and returns its length. Returns
// 0 and leaves the buffer alone when there is no such string, or it and the 0 would fill the buffer or more:
// a string is never cut.
long Sub_OSXLoadString(unsigned long id, unsigned short* buffer, long capacity);

// Gives the text a string (id 131, the host's number of the options, stands for string 1), empty when it is
// missing or longer than 1022 units. With the cut, everything from the first "(" on is left out: of a
// prototype the function's name remains.
void Do_GetString(unsigned long id, koru::OwnedText& text, bool cutAtParenthesis);

// Answers the host's request for a string of some kind (131 options, 128 name, 129 help text) into its
// buffer, as Sub_OSXLoadString does. The language is the system's, whatever the host names.
void Do_GetString(unsigned long kind, unsigned int language, int capacity, unsigned short* buffer);

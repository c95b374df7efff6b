#pragma once

// What the brackets of several script steps have in common.

#include "host/calc/parser.h"

#include <initializer_list>
#include <string>
#include <string_view>

namespace host {

// Takes words and a colon, as in "Text Result:", or fails with "expected [what]".
void readLabel(Parser& in, std::initializer_list<std::u16string_view> words, std::string_view what);

// Takes a variable, with or without its repetition, and answers its folded name.
std::u16string readVariable(Parser& in);

// White space within a line.
bool isSpace(char16_t c);

// The words of a name with single spaces between them.
std::u16string normalName(std::u16string_view text);

} // namespace host

#pragma once

// Support for the tests of the interface library, which use it as a plug-in does: by the inline classes.

#include "host/wrapper/interface.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

// Convert UTF-16 to a text of the host, and back.
fmx::TextUniquePtr hostText(std::u16string_view text);
std::u16string unitsOf(const fmx::Text& text);

// Convert a number of the host to decimal digits, and back.
std::u16string digitsOf(const fmx::FixPt& number);
const fmx::FixPt& numberFrom(fmx::Data& holder, std::u16string_view text);

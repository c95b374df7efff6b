#pragma once

// What the tests of the library share. They use it as a plug-in does: through the inline classes of the
// interface.

#include "host/wrapper/interface.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

// A text of the host from UTF-16, and back.
fmx::TextUniquePtr hostText(std::u16string_view text);
std::u16string unitsOf(const fmx::Text& text);

// A number of the host in decimal, and from decimal.
std::u16string digitsOf(const fmx::FixPt& number);
const fmx::FixPt& numberFrom(fmx::Data& holder, std::u16string_view text);

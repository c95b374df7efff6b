#pragma once

// The encoding of texts in these tests: UTF-8, in which half of a surrogate pair has three bytes as well.

#include <string>
#include <string_view>

namespace model {

std::u16string unitsOf(std::string_view bytes);
std::string bytesOf(std::u16string_view units);

} // namespace model

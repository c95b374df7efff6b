#pragma once

// Texts of the tests: UTF-8, in which also half of a surrogate pair, which is no character, has its three
// bytes.

#include <string>
#include <string_view>

namespace model {

std::u16string unitsOf(std::string_view bytes);
std::string bytesOf(std::u16string_view units);

} // namespace model

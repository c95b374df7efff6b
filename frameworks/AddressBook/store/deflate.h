#pragma once

// Text in less space, by zlib.

#include <optional>
#include <string>
#include <string_view>

namespace addressbook {

// Returns [text] compressed, behind its length in bytes (32 bits, the highest first); empty for no text.
std::string deflated(std::string_view text);

// Returns the text that deflated() made [bytes] of; nothing when it did not.
std::optional<std::string> inflated(std::string_view bytes);

} // namespace addressbook

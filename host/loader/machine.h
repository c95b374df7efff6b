#pragma once

// The machine for which a library is built, by its header, and whether the file is complete.

#include <filesystem>
#include <string>

namespace host {

// Returns the system and processor that a library is for, such as "Linux on arm64 (64 bit)" or "macOS", when
// they differ from this program's; empty when they are the same, or when the file is no library of a known
// kind.
std::string foreignMachine(const std::filesystem::path& file);

// Returns this program's system and processor, as foreignMachine() would word them.
std::string ownMachine();

// Whether a library for this machine ends before the segments that its header lists, as an interrupted copy
// does. dlopen would map it nevertheless, and crash.
bool isCutShort(const std::filesystem::path& file);

} // namespace host

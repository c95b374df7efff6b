#pragma once

// What machine a library is built for, as its first bytes say, and whether all of it is there.

#include <filesystem>
#include <string>

namespace host {

// The system and processor that a library is for, such as "Linux on arm64 (64 bit)" or "macOS", when these
// are others than this program's; empty when they are the same, or when the file is no library of a known
// kind.
std::string foreignMachine(const std::filesystem::path& file);

// This program's own, in the same words.
std::string ownMachine();

// Whether a library for this machine ends before the segments that its header describes, as a copy does that was
// broken off. dlopen would map it all the same, and crash.
bool isCutShort(const std::filesystem::path& file);

} // namespace host

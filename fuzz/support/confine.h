#pragma once

#include <filesystem>
#include <initializer_list>

namespace fuzz {

// Keeps this process from ever changing, making or removing anything outside of these folders, for inputs that may name
// any file. Returns false when the kernel cannot (Landlock; Linux 5.13).
bool confineWrites(std::initializer_list<std::filesystem::path> folders);

} // namespace fuzz

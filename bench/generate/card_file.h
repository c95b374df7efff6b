#pragma once

#include <cstddef>
#include <filesystem>

namespace bench {

// Writes the first [people] people, without their pictures, as a file of vCards (version 3.0) as another
// program would: some 430 bytes a card. Throws std::runtime_error when the file cannot be written.
void writeCardFile(const std::filesystem::path& file, std::size_t people);

} // namespace bench

#pragma once

// Reading and writing whole files. Both functions throw FileError, with a message that names the file.

#include "host/values/container.h"

#include <filesystem>

namespace host {

// Files larger than this are refused.
inline constexpr size_t kMaxFileBytes = size_t{2} << 30;

// Returns the contents of a regular file. Throws for an empty file, too.
Bytes readBytes(const std::filesystem::path& file);

// Writes [bytes] as the contents of a file, atomically: on failure the file is unchanged. Follows a link;
// throws when there is something that is not a regular file.
void writeBytes(const std::filesystem::path& file, const Bytes& bytes);

} // namespace host

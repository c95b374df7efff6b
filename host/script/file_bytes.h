#pragma once

// Whole files as bytes. Failures are FileError, with a message that names the file.

#include "host/values/container.h"

#include <filesystem>

namespace host {

// Files larger than this are refused.
inline constexpr size_t kMaxFileBytes = size_t{2} << 30;

// The contents of a regular file that is not empty, held once in memory.
Bytes readBytes(const std::filesystem::path& file);

// Makes [bytes] the contents of a file, which is there with all of them or as it was before. A link is
// followed; what is there and is no regular file is refused.
void writeBytes(const std::filesystem::path& file, const Bytes& bytes);

} // namespace host

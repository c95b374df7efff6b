// Paths of files: as operating systems write them, and as the host does: "file:/folder/name" on this system,
// "file:/Volume/folder/name" on macOS, "file:/C:/folder/name" on Windows, "filemac:", "filewin:",
// "filelinux:" for one system alone, and "image:", "movie:" with their own ones for pictures and films.
#pragma once

#include "FMWrapper/FMXExtern.h"

#include <optional>
#include <string>
#include <string_view>

namespace host {

// The formats of operating systems, by their numbers.
enum class PathFormat : fmx::int32 { posix = 1, windows = 2, urlPath = 3 };

// A path of an operating system as the host's; nothing for one that is not whole (from a root on) and for no
// path of that format.
std::optional<std::u16string> hostPath(std::u16string_view path, PathFormat format);

// The host's path as one of an operating system; nothing when it is not whole or of a system that has no such
// paths.
std::optional<std::u16string> systemPath(std::u16string_view path, PathFormat format);

} // namespace host

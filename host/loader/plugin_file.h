#pragma once

// Where the library of a plug-in is.

#include <filesystem>

namespace host {

// The absolute path of the .fmx file that [path] stands for: the file itself; a bundle X.fmplugin with one in
// Contents/Resources/Linux; or a folder that holds one file or bundle of these kinds. The file is of this
// machine's architecture, as far as its head says what it is for. Throws LoadError.
std::filesystem::path pluginFile(const std::filesystem::path& path);

} // namespace host

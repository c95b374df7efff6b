#pragma once

// Finding the library of a plug-in.

#include <filesystem>

namespace host {

// Returns the absolute path of the .fmx file that [path] stands for: the file itself; the one in
// Contents/Resources/Linux of a bundle X.fmplugin; or that of the only such file or bundle in a folder.
// Throws LoadError, also when the file's header says that it is for another machine.
std::filesystem::path pluginFile(const std::filesystem::path& path);

} // namespace host

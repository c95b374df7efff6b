#pragma once

// The libraries that stand beside that of the plug-in interface, in the build folder as in an installation.
// Those that bring many others with them are loaded when they are first needed.

#include <filesystem>

namespace host {

// Returns the folder of the libraries; empty when the library of the plug-in interface is not loaded.
std::filesystem::path libraryFolder();

// Returns an object that a library of that folder exports, and loads the library for good. Throws
// std::runtime_error with the reason when it cannot be loaded.
const void* libraryObject(const char* library, const char* symbol);

} // namespace host

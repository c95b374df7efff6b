#pragma once

// A plug-in's library in this process.

#include "FMWrapper/FMXExtern.h"

#include <filesystem>

namespace host {

// A loaded library. The constructor loads it and finds the entry point, but does not call the plug-in; only
// the library's own initialisers have run. It is never unloaded, as classes, threads and texts of a plug-in
// may still be in use when the host no longer needs it.
class PluginLibrary {
  public:
    using EntryPoint = void (*)(FMX_ExternCallPtr);

    // Throws LoadError.
    explicit PluginLibrary(const std::filesystem::path& file);

    EntryPoint entry() const { return entry_; }

    // Returns dlopen's handle, which each message gives to the plug-in as its instance.
    void* handle() const { return handle_; }

  private:
    void* handle_;
    EntryPoint entry_;
};

} // namespace host

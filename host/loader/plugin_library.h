#pragma once

// A plug-in's library in this process.

#include "FMWrapper/FMXExtern.h"

#include <filesystem>

namespace host {

// Loading and looking into it is all the constructor does; the plug-in has not been called yet, only what its
// library does by itself when it is loaded has been done.
// There is no unloading: classes, threads and texts of a plug-in may outlive every use the host has for it.
class PluginLibrary {
  public:
    using EntryPoint = void (*)(FMX_ExternCallPtr);

    // Throws LoadError.
    explicit PluginLibrary(const std::filesystem::path& file);

    EntryPoint entry() const { return entry_; }

    // What dlopen answered: the instance that each message tells the plug-in.
    void* handle() const { return handle_; }

  private:
    void* handle_;
    EntryPoint entry_;
};

} // namespace host

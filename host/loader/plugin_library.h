// A plug-in's library in this process.
#pragma once

#include "FMWrapper/FMXExtern.h"

#include <filesystem>

namespace host {

// Finding, loading and looking into it is all the constructor does; the plug-in has not been called yet.
// There is no unloading: classes, threads and texts of a plug-in may outlive every use the host has for it.
class PluginLibrary {
  public:
    using EntryPoint = void (*)(FMX_ExternCallPtr);

    // [path] is a library, or a folder with one .fmx file in it. Throws LoadError.
    explicit PluginLibrary(const std::filesystem::path& path);

    const std::filesystem::path& file() const { return file_; }
    EntryPoint entry() const { return entry_; }

    // What dlopen answered: the instance that start-up tells the plug-in.
    void* handle() const { return handle_; }

  private:
    std::filesystem::path file_;
    void* handle_;
    EntryPoint entry_;
};

} // namespace host

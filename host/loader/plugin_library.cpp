#include "host/loader/plugin_library.h"

#include "host/loader/load_error.h"

#include <dlfcn.h>
#include <string>

namespace host {

namespace {

constexpr const char* kEntryName = "FMExternCallProc";

// Returns dlerror's text without the file at its beginning, which the caller's message names anyway.
std::string loaderMessage(const std::filesystem::path& file) {
    const char* text = dlerror();
    std::string message = text == nullptr ? "unknown reason" : text;
    const std::string prefix = file.string() + ": ";
    return message.starts_with(prefix) ? message.substr(prefix.size()) : message;
}

} // namespace

PluginLibrary::PluginLibrary(const std::filesystem::path& file)
    : handle_(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)), entry_(nullptr) {
    if (handle_ == nullptr) {
        throw LoadError("can not load " + file.string() + ": " + loaderMessage(file));
    }
    entry_ = reinterpret_cast<EntryPoint>(dlsym(handle_, kEntryName));
    if (entry_ == nullptr) {
        throw LoadError(file.string() + " is no plug-in: it has no function " + kEntryName);
    }
}

} // namespace host

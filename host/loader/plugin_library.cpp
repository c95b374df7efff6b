#include "host/loader/plugin_library.h"

#include "host/loader/plugin_host.h"

#include <dlfcn.h>
#include <string>

namespace host {

namespace fs = std::filesystem;

namespace {

constexpr const char* kEntryName = "FMExternCallProc";
constexpr const char* kEnding = ".fmx";

fs::path libraryFile(const fs::path& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status)) {
        throw LoadError("there is no plug-in at " + path.string() +
                        (error && status.type() == fs::file_type::none ? ": " + error.message() : ""));
    }
    if (!fs::is_directory(status)) {
        return fs::absolute(path);
    }
    fs::path found;
    for (const fs::directory_entry& entry : fs::directory_iterator(path, error)) {
        if (entry.path().extension() != kEnding || entry.is_directory(error)) {
            continue;
        }
        if (!found.empty()) {
            throw LoadError("the folder " + path.string() +
                            " holds more than one .fmx file; name the one to load");
        }
        found = entry.path();
    }
    if (error) {
        throw LoadError("can not read the folder " + path.string() + ": " + error.message());
    }
    if (found.empty()) {
        throw LoadError("the folder " + path.string() + " holds no .fmx file");
    }
    return fs::absolute(found);
}

// dlerror's text often begins with the file, which the message names anyway.
std::string loaderMessage(const fs::path& file) {
    const char* text = dlerror();
    std::string message = text == nullptr ? "unknown reason" : text;
    const std::string prefix = file.string() + ": ";
    return message.starts_with(prefix) ? message.substr(prefix.size()) : message;
}

} // namespace

PluginLibrary::PluginLibrary(const fs::path& path)
    : file_(libraryFile(path)), handle_(dlopen(file_.c_str(), RTLD_NOW | RTLD_LOCAL)), entry_(nullptr) {
    if (handle_ == nullptr) {
        throw LoadError("can not load " + file_.string() + ": " + loaderMessage(file_));
    }
    entry_ = reinterpret_cast<EntryPoint>(dlsym(handle_, kEntryName));
    if (entry_ == nullptr) {
        throw LoadError(file_.string() + " is no plug-in: it has no function " + kEntryName);
    }
}

} // namespace host

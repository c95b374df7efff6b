#include "host/modules/installed_library.h"

#include <array>
#include <climits>
#include <dlfcn.h>
#include <stdexcept>

namespace host {

std::filesystem::path libraryFolder() {
    std::array<char, PATH_MAX> folder{};
    void* wrapper = dlopen("libFMWrapper.so", RTLD_LAZY | RTLD_NOLOAD);
    if (wrapper != nullptr) {
        dlinfo(wrapper, RTLD_DI_ORIGIN, folder.data());
        dlclose(wrapper);
    }
    return folder.data();
}

const void* libraryObject(const char* library, const char* symbol) {
    void* loaded = dlopen((libraryFolder() / library).c_str(), RTLD_NOW | RTLD_LOCAL);
    const void* object = loaded != nullptr ? dlsym(loaded, symbol) : nullptr;
    if (object == nullptr) {
        const char* reason = dlerror();
        throw std::runtime_error(reason != nullptr ? reason : "there is no " + std::string(symbol));
    }
    return object;
}

} // namespace host

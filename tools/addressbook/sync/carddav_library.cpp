#include "tools/addressbook/sync/carddav_library.h"

#include "tools/addressbook/output.h"

#include <dlfcn.h>

#include <string>

namespace addressbook::tool {
namespace {

// The program's own run path leads to the folder of the libraries.
const carddav::Library& load() {
    void* library = dlopen(carddav::kLibraryFile, RTLD_NOW | RTLD_LOCAL);
    const void* table = library != nullptr ? dlsym(library, carddav::kLibrarySymbol) : nullptr;
    if (table == nullptr) {
        throw Failure(std::string("the library for servers cannot be loaded: ") + dlerror());
    }
    return *static_cast<const carddav::Library*>(table);
}

} // namespace

const carddav::Library& carddavLibrary() {
    static const carddav::Library& library = load();
    return library;
}

} // namespace addressbook::tool

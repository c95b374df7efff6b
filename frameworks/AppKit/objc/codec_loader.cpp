#include "frameworks/AppKit/objc/codec_loader.h"

#include <cstdio>
#include <dlfcn.h>
#include <filesystem>

namespace appkit {

namespace {

// The codec is in the folder of this library, which is looked up here, as a sanitizer's dlopen() ignores run
// paths.
const Codec* load() {
    Dl_info self = {};
    if (::dladdr(reinterpret_cast<const void*>(&codec), &self) == 0 || self.dli_fname == nullptr) {
        return nullptr;
    }
    const std::filesystem::path file = std::filesystem::path(self.dli_fname).replace_filename(kCodecLibrary);
    void* library = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* table = library ? ::dlsym(library, kCodecSymbol) : nullptr;
    if (table == nullptr) {
        std::fprintf(stderr, "Pictures cannot be read or written: %s\n", ::dlerror());
    }
    return static_cast<const Codec*>(table);
}

} // namespace

const Codec* codec() {
    static const Codec* const loaded = load();
    return loaded;
}

} // namespace appkit

// A table of strings beside the plug-in, from which it has its names, prototypes and options.

#include "fuzz/support/claim.h"
#include "plugin/shell/own_bundle.h"
#include "plugin/shell/strings.h"
#include "plugin/support/guard.h"
#include "plugin/support/pool.h"
#include "tests/support/temporary_folder.h"

#include <cstdint>
#include <fstream>
#include <vector>

namespace {

constexpr unsigned long kIds[] = {1, 2, 128, 129, 131, 132, 204, 207, 208, 249};
constexpr unsigned short kUntouched = 0xAAAA;

const std::filesystem::path& folder() {
    static const support::TemporaryHome home;
    return home.path();
}

void write(const std::uint8_t* data, std::size_t size) {
    const std::filesystem::path strings = folder() / "Resources" / "English.lproj";
    std::filesystem::create_directories(strings);
    std::ofstream(strings / "KORUFMPlugin.strings", std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

// What the host asks for, into a buffer of a size.
void copy(unsigned long id, std::size_t capacity) {
    std::vector<unsigned short> buffer(capacity, kUntouched);
    const long length = Sub_OSXLoadString(id, buffer.data(), static_cast<long>(capacity));
    fuzz::claim(length >= 0, "a string has a length");
    if (length > 0) {
        fuzz::claim(static_cast<std::size_t>(length) + 1 < capacity &&
                        buffer[static_cast<std::size_t>(length)] == 0,
                    "a string is whole, and ends with a 0");
    }
}

// What the plug-in registers.
void read(unsigned long id) {
    for (const bool cut : {false, true}) {
        koru::OwnedText text;
        Do_GetString(id, text, cut);
        fuzz::claim(text->GetSize() < 1023, "a string fits its buffer");
    }
}

} // namespace

namespace koru {

// In the place of the plug-in's own: the folder that an input fills. It is read anew for each, as the bundle of the one
// before is gone with its pool.
NSBundle* ownBundle() {
    return [NSBundle bundleWithPath:[NSString stringWithUTF8String:folder().c_str()]];
}

} // namespace koru

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const koru::Pool pool;
    write(data, size);
    NSBundle* const kept = koru::ownBundle(); // the table is read once
    for (const unsigned long id : kIds) {
        // The entry point has the same guard.
        koru::guarded(
            [&] {
                for (const std::size_t capacity : {0, 1, 2, 16, 256, 1024}) {
                    copy(id, capacity);
                }
                read(id);
            },
            [](NSException* /*exception*/) {});
    }
    fuzz::claim(kept == koru::ownBundle(), "there is one bundle");
    return 0;
}

#pragma once

#include "plugin/support/host_interface.h"
#include <span>

namespace koru {

// One external function. Its name and prototype stand in the string table, under the function's string id.
struct ExternalFunction {
    short id;
    short minArguments; // arguments
    short maxArguments;
    fmx::ExtPluginType handler;
};

// Returns the functions in ascending order of their ids. Ids 21 and 44 are not used and must stay free.
[[nodiscard]] std::span<const ExternalFunction> externalFunctions();

// Returns the ids in the order in which they are unregistered. Besides those of the table it has id 21, which
// is never registered (but not 44), and ids of functions that this version does not have.
[[nodiscard]] std::span<const short> unregistrationOrder();

// Returns the number of the localized string that holds the function's prototype.
[[nodiscard]] constexpr unsigned long stringIdOf(short function) {
    return 204UL + static_cast<unsigned long>(function);
}

// Whether the function takes [count] arguments; true for a function that is not in the table.
[[nodiscard]] bool acceptsCount(short function, fmx::uint32 count);

// Register and unregister all functions with the host. The host's error codes are ignored; an exception of
// the host (std::bad_alloc, std::exception) leaves the remaining functions out.
void registerFunctions();
void unregisterFunctions();

} // namespace koru

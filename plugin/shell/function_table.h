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

// Returns the functions in ascending order of their ids. Ids 21 and 44 are free and stay so.
[[nodiscard]] std::span<const ExternalFunction> externalFunctions();

// Returns the ids in the order in which they are unregistered. Id 21 is named though it is never registered,
// id 44 is not; so are ids of functions that this version does not have.
[[nodiscard]] std::span<const short> unregistrationOrder();

// Returns the number of the localized string that holds the function's prototype.
[[nodiscard]] constexpr unsigned long stringIdOf(short function) {
    return 204UL + static_cast<unsigned long>(function);
}

// Tells whether the function takes so many arguments; true for a function that is not in the table.
[[nodiscard]] bool acceptsCount(short function, fmx::uint32 count);

// Register and unregister all functions with the host. What the host returns to each call is not examined; a
// failure of the host's (std::bad_alloc, std::exception) ends the pass.
void registerFunctions();
void unregisterFunctions();

} // namespace koru

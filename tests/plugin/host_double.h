#pragma once

#include "plugin/support/host_interface.h"
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// A double between the plug-in and the host's library: records which functions are registered, counts the
// host's objects, and can make calls to the host fail.
namespace host_double {

// A registration of a function.
struct Registration {
    std::string plugin;
    short id;
    std::string name;
    std::string prototype;
    short minArguments;
    short maxArguments;
    fmx::uint32 flags;
    fmx::ExtPluginType function;
};

// Return what was registered and unregistered (plug-in and id) since the last reset, in order.
[[nodiscard]] const std::vector<Registration>& registrations();
[[nodiscard]] const std::vector<std::pair<std::string, short>>& unregistrations();

// Returns the constructors ("+ FM_Text_Constructor1") and deletions ("- FM_Text_Delete") of host objects
// since the last reset, in order.
[[nodiscard]] const std::vector<std::string_view>& lives();

// Returns the type of the locale that was made last.
[[nodiscard]] fmx::int32 localeType();

// Returns the locale with which a value was last set to a text.
[[nodiscard]] const fmx::Locale* textLocale();

// Clears all records, and lets every call succeed.
void reset();

// Returns the number of host objects (texts, dates, containers, ...) that have been made and not deleted.
[[nodiscard]] int livingObjects();

// Makes the call after the next [calls] calls fail with [code] (1 out of memory, 2 unknown); before that,
// [atFailure] is called.
void failAfter(int calls, int code, std::function<void()> atFailure = {});

// Whether that call was made.
[[nodiscard]] bool hasFailed();

} // namespace host_double

#pragma once

#include "plugin/support/host_interface.h"
#include <string>
#include <string_view>
#include <vector>

// Stands between the plug-in and the host's library in the tests: notes which functions are registered,
// counts the host's objects that live, and can make the host's calls fail.
namespace host_double {

// One registration, as the host got it.
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

// What was registered and unregistered (plug-in and id) since the last reset, in order.
[[nodiscard]] const std::vector<Registration>& registrations();
[[nodiscard]] const std::vector<std::pair<std::string, short>>& unregistrations();

// The values of the host that were made ("+ FM_Text_Constructor1") and deleted ("- FM_Text_Delete") since the
// last reset, in order.
[[nodiscard]] const std::vector<std::string_view>& lives();

// The type of the locale that was made last.
[[nodiscard]] fmx::int32 localeType();

// The locale with which a value was last made text.
[[nodiscard]] const fmx::Locale* textLocale();

// Forgets them, and lets every call succeed.
void reset();

// Values of the host (texts, dates, containers, ...) that have been made and not deleted.
[[nodiscard]] int livingObjects();

// Makes the call after so many others fail with the code (1 no memory, 2 unknown).
void failAfter(int calls, int code);

// Whether the call that was to fail has come.
[[nodiscard]] bool hasFailed();

} // namespace host_double

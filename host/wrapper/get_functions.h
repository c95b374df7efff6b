#pragma once

// The numbers by which plug-ins ask for Get ( ... ).

#include "FMWrapper/FMXExtern.h"

#include <string_view>

namespace host {

// Returns the name in Get ( name ) for a number; empty for a number that this host does not know.
std::u16string_view getFunctionName(fmx::int16 which);

} // namespace host

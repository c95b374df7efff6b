#pragma once

// The numbers by which plug-ins ask for Get ( ... ).

#include "FMWrapper/FMXExtern.h"

#include <string_view>

namespace host {

// The name in Get ( name ) of a number; empty for one that this host does not know.
std::u16string_view getFunctionName(fmx::int16 which);

} // namespace host

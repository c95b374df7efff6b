// The constants of the interface: each has the value that other hosts and plug-ins use.
#include "host/wrapper/interface.h"

// One that has none of these values has none that differs: comparing as 64 bits keeps -1 apart from
// 0xFFFFFFFF.
#define CONSTANT(scope, name, value) static_assert(static_cast<fmx::int64>(scope name) == (value), #name);
#include "tests/sdk/constants.def"
#undef CONSTANT

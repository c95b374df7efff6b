#pragma once

#include "plugin/support/host_interface.h"

// Sets the current record type by the word in the argument at [position], in any letter case: "person" and
// "contact" make it persons, "group" groups. Any other word, an empty argument or none leaves it as it is,
// and is no error.
void SetType(const fmx::DataVect& arguments, fmx::uint32 position);

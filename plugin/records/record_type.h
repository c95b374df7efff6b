#pragma once

#include "plugin/support/host_interface.h"

// Reads the argument at the position as a word for the record type, in any letter case: "person" and
// "contact" make persons current, "group" groups; any other word changes nothing and is no error. Without the
// argument, or with an empty one, the type stays as it is.
void SetType(const fmx::DataVect& arguments, fmx::uint32 position);

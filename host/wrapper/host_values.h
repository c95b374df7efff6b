#pragma once

// The values of calculations in the objects of the interface, for the program that runs the plug-ins: the
// interface itself hands them over in parts, dates and numbers as texts, styles character by character.

#include "host/values/value.h"
#include "host/wrapper/interface.h"

#include <span>

extern "C" {

// Sets [value] to what a data object holds.
FMX_API void FM_Host_GetValue(const fmx::Data& data, host::Value& value, fmx::_fmxcpt& block) noexcept;

// Sets a data object to a value, with the native type of its type and the system's locale.
FMX_API void FM_Host_SetValue(fmx::Data& data, const host::Value& value, fmx::_fmxcpt& block) noexcept;

// Sets a vector to these values.
FMX_API void FM_Host_SetValues(fmx::DataVect& vector, std::span<const host::Value> values,
                               fmx::_fmxcpt& block) noexcept;

} // extern "C"

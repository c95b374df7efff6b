#pragma once

// Conversions of values to the plug-in interface's objects and back. They throw what the interface throws:
// std::bad_alloc, std::exception.

#include "host/values/value.h"

#include "host/wrapper/interface.h"

#include <span>
#include <string>

namespace host {

std::u16string textOf(const fmx::Text& text);

Value valueOf(const fmx::Data& data);

// Sets [data] to a value, with the native type of its type.
void setData(fmx::Data& data, const Value& value);
// Sets the arguments of a call.
void setArguments(fmx::DataVect& arguments, std::span<const Value> values);

} // namespace host

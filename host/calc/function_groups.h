// The groups that the table of functions is put together from, and what their functions share. A function
// whose computation has no answer may throw NumberError: the evaluator makes it "?".
#pragma once

#include "host/calc/builtins.h"

#include <cstdint>
#include <span>

namespace host {

std::span<const Builtin> logicFunctions();
std::span<const Builtin> textFunctions();
std::span<const Builtin> listFunctions();
std::span<const Builtin> numberFunctions();
std::span<const Builtin> dateFunctions();
std::span<const Builtin> containerFunctions();

// The whole part of a value's number; beyond 64 bits the nearest number that fits.
int64_t integer(const Value& value);

// The same as a count: nothing below 0.
size_t count(const Value& value);

Value integerValue(int64_t number);

} // namespace host

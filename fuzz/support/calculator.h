#pragma once

// Calculations as the host evaluates them, in a session that each input has to itself.

#include "host/calc/session.h"

#include <string_view>

namespace fuzz {

// Evaluates a text, in UTF-8, and reads its value in every way, or the error. Stops it before its time is over.
void evaluate(host::Session& session, std::string_view calculation);

// Evaluates what has been parsed; returns its value, invalid when there was an error.
host::Value evaluate(host::Session& session, const host::Calculation& calculation);

// Reads a value as every type, and as text.
void readAll(const host::Value& value);

} // namespace fuzz

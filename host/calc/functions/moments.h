#pragma once

// Parts of the dates and times that arguments are.

#include "host/calc/functions/groups.h"

#include <optional>

namespace host {

// A part of the day or the time that a value is read as; nothing for an empty value, "?" for one that is no
// such thing. [take] makes the answer.
template <class Take>
Value partOf(const Value& value, const std::optional<DateTime>& read, Take take) {
    if (!read) {
        return value.isEmpty() ? Value() : Value::invalid();
    }
    return take(*read);
}

// A part of the date that the first argument is.
template <class Take>
Value dayPart(Arguments in, Take take) {
    return partOf(in[0], in[0].asDate(), take);
}

// A part of the time that the first argument is.
template <class Take>
Value timePart(Arguments in, Take take) {
    return partOf(in[0], in[0].asTime(), take);
}

} // namespace host

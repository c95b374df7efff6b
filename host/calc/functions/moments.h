#pragma once

// Functions of parts of a date or time, such as Year and Minute.

#include "host/calc/functions/groups.h"

#include <optional>

namespace host {

// Returns what [take] makes of [read], the date or time that [value] was read as. When there is none: empty
// for an empty value, "?" for any other.
template <class Take>
Value partOf(const Value& value, const std::optional<DateTime>& read, Take take) {
    if (!read) {
        return value.isEmpty() ? Value() : Value::invalid();
    }
    return take(*read);
}

// Like partOf(), for the first argument as a date.
template <class Take>
Value dayPart(Arguments in, Take take) {
    return partOf(in[0], in[0].asDate(), take);
}

// Like partOf(), for the first argument as a time.
template <class Take>
Value timePart(Arguments in, Take take) {
    return partOf(in[0], in[0].asTime(), take);
}

} // namespace host

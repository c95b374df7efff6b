#pragma once

// Paths to elements of JSON: a.b, ['a']['b'], [2], a[1].b; the empty path and "." mean the root.

#include "host/calc/json_text.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace host {

// A step of a path: a key of an object, or a place in an array.
struct JsonStep {
    enum class Kind { key, index, last, append }; // name, [n], [:], [+]

    Kind kind = Kind::key;
    std::string key;
    size_t index = 0;

    bool isPlace() const { return kind != Kind::key; }
};

// Returns the steps of a path. Throws JsonError for one that cannot be parsed.
std::vector<JsonStep> jsonPath(const Value& path);

// Returns the element at a path; null when there is none. In an array, a key made of digits is a place.
const Json* findJson(const Json& root, const std::vector<JsonStep>& path);

// Returns the element at a path, and makes it if it is missing; so are the elements on the way, and arrays
// are padded with null. Throws JsonError where the path leads through an element of another kind.
Json& makeJson(Json& root, const std::vector<JsonStep>& path);

// Removes the element at a path, if there is one.
void removeJson(Json& root, const std::vector<JsonStep>& path);

} // namespace host

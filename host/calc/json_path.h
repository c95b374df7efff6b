#pragma once

// Paths to elements of JSON: a.b, ['a']['b'], [2], a[1].b; the empty path and "." are the root.

#include "host/calc/json_text.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace host {

// A step of a path: a key, or a place in an array.
struct JsonStep {
    enum class Kind { key, index, last, append }; // name, [n], [:], [+]

    Kind kind = Kind::key;
    std::string key;
    size_t index = 0;

    bool isPlace() const { return kind != Kind::key; }
};

// Reads a path. Throws JsonError for one that cannot be understood.
std::vector<JsonStep> jsonPath(const Value& path);

// The element at the end of a path; null when there is none. A key of digits is a place in an array.
const Json* findJson(const Json& root, const std::vector<JsonStep>& path);

// The element at the end of a path; what is missing on the way is made, arrays are filled up with null.
// Throws JsonError where the path meets an element of another kind.
Json& makeJson(Json& root, const std::vector<JsonStep>& path);

// Removes the element at the end of a path, if there is one.
void removeJson(Json& root, const std::vector<JsonStep>& path);

} // namespace host

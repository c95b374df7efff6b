#pragma once

// Values and lists as JSON.

#include "frameworks/AddressBook/values/value.h"
#include "tools/addressbook/output.h"

#include <nlohmann/json.hpp>

#include <string>

namespace addressbook::tool {

using Json = nlohmann::ordered_json;

// Returns a value as JSON; lists are arrays of objects with label and value.
Json jsonOf(const Value& value);

// Writes JSON as text; bytes that are not UTF-8 (lone surrogates) are replaced, as the library would throw.
std::string dump(const Json& json, int indent = -1);

// Writes a JSON array with one element a line.
class JsonLines {
  public:
    explicit JsonLines(Output& output) : output_(output) { output_.write("["); }
    void add(const Json& json) {
        output_.write((first_ ? "\n" : ",\n") + dump(json));
        first_ = false;
    }
    // Ends the array.
    void finish() { output_.write(first_ ? "]\n" : "\n]\n"); }

  private:
    Output& output_;
    bool first_ = true;
};

} // namespace addressbook::tool

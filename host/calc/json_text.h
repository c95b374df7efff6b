#pragma once

// JSON as texts hold it: read, kept with the text, written.

#include "host/values/value.h"

#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

namespace host {

using Json = nlohmann::json; // its objects keep their keys sorted, which is the order that is written

// A text that is no JSON document; what() is the message of the reader, in UTF-8.
class JsonError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// What reading a text gave, remembered with it.
// NOLINTNEXTLINE(bugprone-exception-escape): the library's values do not throw when they are made or moved
struct ParsedJson : TextNote {
    Json root;
    std::string error;     // of a text that is no JSON
    bool declared = false; // by JSONParse, or a result of JSONSetElement: JSONParsedState tells
};

// The parsed form of a value's text, from memory when it was read before. Never null; a text that is no JSON
// document (an object or an array) has an error. Lives as long as [value].
std::shared_ptr<const ParsedJson> parsedJson(const Value& value);

// The parsed form of a JSON document. Throws JsonError for a text that is none.
std::shared_ptr<const ParsedJson> requireJson(const Value& value);

// The first JSON value that a text begins with; what follows does not count. Throws JsonError for none.
Json firstJson(std::u16string_view text);

// Without spaces; numbers as short as they can be, characters as they are but for those that must be escaped.
std::u16string jsonText(const Json& json);

// A value a line, indented by tabs.
std::u16string formattedJson(const Json& json);

// A text value of some JSON that knows its parsed form.
Value jsonValue(Json json, bool declared);

} // namespace host

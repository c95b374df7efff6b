#pragma once

// JSON in texts: parsing it, keeping the parsed form with the text, and writing it.

#include "host/values/value.h"

#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

namespace host {

using Json = nlohmann::json; // its objects keep their keys sorted, which is the order that is written

// Thrown for a text that is no JSON document; what() is the parser's message, in UTF-8.
class JsonError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The result of parsing a text, kept as its note.
// NOLINTNEXTLINE(bugprone-exception-escape): the library's values do not throw when they are made or moved
struct ParsedJson : TextNote {
    Json root;
    std::string error;     // of a text that is no JSON
    bool declared = false; // a result of JSONParse or JSONSetElement, which JSONParsedState asks for

    // Returns the document as jsonText() writes it.
    std::u16string text() const override;
};

// Returns the parsed form of a value's text; parses it only once, as it is kept with the text. Never null;
// for a text that is no JSON document (an object or an array) it has an error. Valid as long as [value].
std::shared_ptr<const ParsedJson> parsedJson(const Value& value);

// Like parsedJson(), but throws JsonError for a text that is no JSON document.
std::shared_ptr<const ParsedJson> requireJson(const Value& value);

// Returns the JSON value with which a text begins, and ignores the rest. Throws JsonError when there is none.
Json firstJson(std::u16string_view text);

// Returns JSON as text without spaces, with numbers as short as possible, and escapes only where required.
std::u16string jsonText(const Json& json);

// Returns JSON as text with one value a line, indented by tabs.
std::u16string formattedJson(const Json& json);

// Returns the document that a value holds, for changing it; without a copy when nothing else has the value.
// Throws JsonError.
Json takeJson(Value value);

// Returns JSON as a text value. That of a document keeps the parsed form; its text is written when it is first asked for.
Value jsonValue(Json json, bool declared);

} // namespace host

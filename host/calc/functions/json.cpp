// JSON: reading and changing elements. A text that is no JSON gives "?" followed by what is wrong with it.
#include "host/calc/constants.h"
#include "host/calc/evaluator.h"
#include "host/calc/functions/groups.h"
#include "host/calc/json_path.h"
#include "host/calc/lists.h"
#include "host/values/text.h"

#include <charconv>

namespace host {

namespace {

// The numbers of the constants JSONRaw, JSONString ...
enum JsonType : int64_t { kRaw, kString, kNumber, kObject, kArray, kBoolean, kNull };

Value errorValue(const JsonError& error) {
    return Value::text(fromUtf8(std::string("? ") + error.what()));
}

// Returns the result of a function that may throw JsonError, or the error as a value.
template <class Function>
Value guarded(Function function) {
    try {
        return function();
    } catch (const JsonError& error) {
        return errorValue(error);
    }
}

// Returns an element as a value: the value of a text, number or boolean; JSON for objects and arrays; empty
// for null.
Value valueOf(const Json& json) {
    switch (json.type()) {
    case Json::value_t::string:
        return Value::text(fromUtf8(json.get_ref<const std::string&>()));
    case Json::value_t::boolean:
        return integerValue(json.get<bool>() ? 1 : 0);
    case Json::value_t::number_integer:
        return integerValue(json.get<int64_t>());
    case Json::value_t::number_unsigned:
    case Json::value_t::number_float:
        return Value::number(Number::fromText(jsonText(json)));
    case Json::value_t::null:
        return {};
    default:
        return jsonValue(json, false);
    }
}

int64_t typeOf(const Json& json) {
    switch (json.type()) {
    case Json::value_t::string:
        return kString;
    case Json::value_t::boolean:
        return kBoolean;
    case Json::value_t::object:
        return kObject;
    case Json::value_t::array:
        return kArray;
    case Json::value_t::null:
        return kNull;
    default:
        return kNumber;
    }
}

// Returns a number as JSON: a whole number of up to 64 bits as such, any other as a double, which is what JSON
// parsers read. Throws JsonError for one that is too large for that.
Json numberJson(const Number& number) {
    const int64_t whole = number.toInt64();
    if (number == Number(whole)) {
        return whole;
    }
    const std::u16string text = number.toText();
    const size_t digits = text.starts_with(u'-') ? 1 : 0;
    return firstJson(text[digits] == u'.' ? std::u16string(text).insert(digits, 1, u'0') : text);
}

// Returns a value as JSON by its own type; a text that begins like JSON is parsed.
Json rawJson(const Value& value) {
    if (value.type() == ValueType::number && !value.isEmpty()) {
        return numberJson(*value.asNumber());
    }
    const std::u16string text = value.asText();
    try {
        return firstJson(text);
    } catch (const JsonError&) {
        return toUtf8(text);
    }
}

// Returns a value as an element of a JsonType.
Json elementOf(const Value& value, int64_t type) {
    const std::u16string text = type == kNull ? std::u16string() : value.asText();
    switch (type) {
    case kString:
        return toUtf8(text);
    case kNumber:
        return numberJson(value.asNumber().value_or(0));
    case kBoolean:
        return foldCase(text) == u"true" || value.asBoolean();
    case kNull:
        return nullptr;
    case kObject:
    case kArray:
        if (text.empty()) {
            return type == kObject ? Json::object() : Json::array();
        }
        return requireJson(value)->root;
    default:
        return rawJson(value);
    }
}

// Returns the JsonType that an argument gives, by its number or by its constant's name in a text.
int64_t typeArgument(const Value& value) {
    const Constant* named =
        value.type() == ValueType::text ? findConstant(foldCase(value.asText())) : nullptr;
    return named != nullptr ? named->value : integer(value);
}

Value deleteElement(Session& /*session*/, std::vector<Value> in) {
    return guarded([&] {
        Json root = takeJson(std::move(in[0]));
        removeJson(root, jsonPath(in[1]));
        return jsonValue(std::move(root), true);
    });
}

Value formatElements(Session& /*session*/, Arguments in) {
    return guarded([&] { return Value::text(formattedJson(requireJson(in[0])->root)); });
}

Value getElement(Session& /*session*/, Arguments in) {
    return guarded([&] {
        const auto document = requireJson(in[0]);
        const auto path = jsonPath(in[1]);
        const Json* found = findJson(document->root, path);
        return found == nullptr ? Value() : valueOf(*found);
    });
}

Value getElementType(Session& /*session*/, Arguments in) {
    return guarded([&] {
        const auto document = requireJson(in[0]);
        const Json* found = findJson(document->root, jsonPath(in[1]));
        if (found == nullptr) {
            throw JsonError("Incorrect key, index, or path");
        }
        return integerValue(typeOf(*found));
    });
}

// Returns a list of what [textOf] makes of each element of an object or an array.
template <class Function>
Value listOf(Arguments in, Function textOf) {
    return guarded([&] {
        const auto document = requireJson(in[0]);
        const Json* found = findJson(document->root, jsonPath(in[1]));
        std::u16string result;
        bool first = true;
        if (found != nullptr && found->is_structured()) {
            for (const auto& item : found->items()) {
                result += first ? u"" : u"\r";
                result += textOf(item);
                first = false;
            }
        }
        return Value::text(result);
    });
}

Value listKeys(Session& /*session*/, Arguments in) {
    return listOf(in, [](const auto& item) { return fromUtf8(item.key()); });
}
Value listValuesFunction(Session& /*session*/, Arguments in) {
    return listOf(in, [](const auto& item) { return valueOf(item.value()).asText(); });
}

// Returns the parts of a text between separators; after a separator at the end there is no further part.
std::vector<std::u16string_view> partsOf(std::u16string_view text, std::u16string_view separator) {
    if (separator.empty()) {
        return listValues(text);
    }
    std::vector<std::u16string_view> parts;
    while (!text.empty()) {
        const size_t end = std::min(text.find(separator), text.size());
        parts.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + separator.size(), text.size()));
    }
    return parts;
}

Value makeArray(Session& /*session*/, Arguments in) {
    return guarded([&] {
        const std::u16string text = in[0].asText();
        const std::u16string separator = in[1].asText();
        Json array = Json::array();
        for (const std::u16string_view part : partsOf(text, separator)) {
            array.push_back(elementOf(Value::text(part), typeArgument(in[2])));
        }
        return jsonValue(std::move(array), true);
    });
}

// Returns the text as a new value that keeps its parsed form and is marked as parsed (JSONParsedState).
Value parse(Session& /*session*/, Arguments in) {
    const auto parsed = parsedJson(in[0]);
    if (!parsed->error.empty()) {
        Value error = errorValue(JsonError(parsed->error));
        auto failed = std::make_shared<ParsedJson>();
        failed->error = parsed->error;
        failed->declared = true;
        error.setNote(std::move(failed));
        return error;
    }
    Value result = Value::text(in[0].asText());
    auto declared = std::make_shared<ParsedJson>();
    declared->root = parsed->root;
    declared->declared = true;
    result.setNote(std::move(declared));
    return result;
}

Value parsedState(Session& /*session*/, Arguments in) {
    const auto* parsed = dynamic_cast<const ParsedJson*>(in[0].note());
    if (parsed == nullptr || !parsed->declared) {
        return integerValue(0);
    }
    return integerValue(parsed->error.empty() ? typeOf(parsed->root) : -1);
}

// Takes either json ; path ; value ; type, or json and any number of [ path ; value ; type ], which are set
// in order. An empty text becomes an object, or an array when the first path begins with a place in an array.
Value setElement(Evaluator& evaluator, Nodes in) {
    return guarded([&] {
        Value json = evaluator.evaluate(in[0]);
        if (!json.isValid()) {
            return json;
        }
        Json root = json.isEmpty() ? Json() : takeJson(std::move(json));
        const auto set = [&](const Node& path, const Node& value, const Node& type) {
            const Value where = evaluator.evaluate(path);
            const Value what = evaluator.evaluate(value);
            const int64_t wanted = typeArgument(evaluator.evaluate(type));
            const auto steps = jsonPath(where);
            makeJson(root, steps) = elementOf(what, wanted);
        };
        if (const auto* first = std::get_if<Brackets>(&in[1].form); first == nullptr) {
            set(in[1], in[2], in[3]);
        } else {
            for (const Node& node : in.subspan(1)) {
                const auto& items = std::get<Brackets>(node.form).items;
                set(items[0], items[1], items[2]);
            }
        }
        return jsonValue(std::move(root), true);
    });
}

constexpr Builtin kFunctions[] = {
    {u"JSONDeleteElement ( json ; keyOrIndexOrPath )", deleteElement, "Removes an element from JSON."},
    {u"JSONFormatElements ( json )", formatElements, "Writes JSON so that it is easy to read."},
    {u"JSONGetElement ( json ; keyOrIndexOrPath )", getElement, "Returns an element of JSON."},
    {u"JSONGetElementType ( json ; keyOrIndexOrPath )", getElementType,
     "Returns the type of an element of JSON, 1 to 6."},
    {u"JSONListKeys ( json ; keyOrIndexOrPath )", listKeys,
     "Lists the keys of an object or the places of an array."},
    {u"JSONListValues ( json ; keyOrIndexOrPath )", listValuesFunction,
     "Lists the values of an object or an array."},
    {u"JSONMakeArray ( listOfValues ; separator ; type )", makeArray, "Makes a JSON array of a list."},
    {u"JSONParse ( json )", parse, "Returns JSON with its parsed form, so that it is not read again."},
    {u"JSONParsedState ( json )", parsedState,
     "Tells whether JSON was parsed: 0 not, -1 not valid, else its type."},
    {u"JSONSetElement ( json ; keyOrIndexOrPath ; value ; type )", setElement,
     "Adds or changes an element of JSON.",
     u"JSONSetElement ( json ; [ keyOrIndexOrPath1 ; value1 ; type1 ] {; ...} )"},
};

} // namespace

std::span<const Builtin> jsonFunctions() {
    return kFunctions;
}

} // namespace host

#include "host/calc/json_text.h"

#include "host/values/text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <sstream>

namespace host {

namespace {

constexpr int kMaxDepth = 1000; // of nested objects and arrays

// Returns the place of a byte, from 0, for an error message. Lines end with CR, LF or both.
std::string place(std::string_view text, size_t byte) {
    size_t line = 1;
    size_t start = 0;
    for (size_t i = 0; i < std::min(byte, text.size()); ++i) {
        const bool isPair = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
        if (text[i] == '\n' || (text[i] == '\r' && !isPair)) {
            ++line;
            start = i + 1;
        }
    }
    return "* Line " + std::to_string(line) + ", Column " + std::to_string(byte - start + 1) + "\n  ";
}

// Whether a character belongs to a word or a number.
bool isWordPart(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '+' || c == '-' || c == '.';
}

// Returns where the token begins that ends before [end]: a text at its quote, a word or number at its first
// character, a sign at itself.
size_t tokenStart(std::string_view text, size_t end) {
    bool inText = false;
    bool inWord = false;
    size_t start = 0;
    for (size_t i = 0; i < end; ++i) {
        const char c = text[i];
        if (inText) {
            i += c == '\\' ? 1 : 0;
            inText = c != '"';
            continue;
        }
        const bool goesOn = inWord && isWordPart(c);
        inWord = isWordPart(c);
        inText = c == '"';
        start = goesOn || std::isspace(static_cast<unsigned char>(c)) != 0 ? start : i;
    }
    return start;
}

// A sign by which an error of the library is recognised, and the message for it.
struct Reason {
    std::string_view sign;
    std::string_view message;
};
constexpr Reason kReasons[] = {
    {"while parsing object separator", "Missing ':' after object member name"},
    {"while parsing object key", "Missing '}' or object member name"},
    {"while parsing object", "Missing ',' or '}' in object declaration"},
    {"while parsing array", "Missing ',' or ']' in array declaration"},
};
constexpr std::string_view kNoValue = "Syntax error: value, object or array expected.";
constexpr std::string_view kNoDocument = "A valid JSON document must be either an array or an object value.";

// Returns where the token begins that the library could not take; the end of a text that ends too early.
size_t errorStart(std::string_view text, const Json::parse_error& error) {
    const std::string_view what = error.what();
    if (what.find("unexpected end of input") != std::string_view::npos) {
        return text.size();
    }
    size_t end = std::min(error.byte, text.size());
    const bool isBroken = what.find("invalid ") != std::string_view::npos;
    if (isBroken && end > 1 && isWordPart(text[end - 2]) && !isWordPart(text[end - 1])) {
        --end; // the character at which a word or number turned out to be none
    }
    return tokenStart(text, end);
}

std::string messageOf(const Json::parse_error& error, std::string_view text) {
    const std::string_view what = error.what();
    const bool wantsValue =
        what.find("expected") == std::string_view::npos ||
        what.find("unexpected end of input; expected '[', '{', or a literal") != std::string_view::npos;
    const auto* reason = std::find_if(std::begin(kReasons), std::end(kReasons), [&](const Reason& row) {
        return what.find(row.sign) != std::string_view::npos;
    });
    const bool known = !wantsValue && reason != std::end(kReasons);
    std::string message =
        place(text, errorStart(text, error)) + std::string(known ? reason->message : kNoValue);
    const size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos || (text[first] != '{' && text[first] != '[')) {
        message += "\n" + place(text, 0) + std::string(kNoDocument);
    }
    return message;
}

// Whether objects and arrays are nested deeper than kMaxDepth; ignores brackets in texts.
bool isTooDeep(std::string_view text) {
    int depth = 0;
    bool inText = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inText) {
            i += c == '\\' ? 1 : 0;
            inText = c != '"';
        } else if (c == '"') {
            inText = true;
        } else if (c == '{' || c == '[') {
            if (++depth > kMaxDepth) {
                return true;
            }
        } else if (c == '}' || c == ']') {
            --depth;
        }
    }
    return false;
}

std::shared_ptr<ParsedJson> read(std::u16string_view text) {
    auto result = std::make_shared<ParsedJson>();
    const std::string bytes = toUtf8(text);
    if (isTooDeep(bytes)) {
        result->error = place(bytes, 0) + "More than 1000 objects and arrays inside each other.";
        return result;
    }
    try {
        result->root = Json::parse(bytes);
        if (!result->root.is_structured()) {
            result->root = nullptr;
            result->error = place(bytes, 0) + std::string(kNoDocument);
        }
    } catch (const Json::parse_error& error) {
        result->error = messageOf(error, bytes);
    } catch (const Json::out_of_range& /*a number too large*/) {
        result->error = place(bytes, 0) + std::string(kNoValue);
    }
    return result;
}

void writeText(std::string& out, const std::string& text) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    out += '"';
    for (const char c : text) {
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        case '\b':
            out += "\\b";
            break;
        case '\f':
            out += "\\f";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20) {
                out += "\\u00";
                out += kDigits[static_cast<unsigned char>(c) >> 4];
                out += kDigits[c & 0xF];
            } else {
                out += c;
            }
        }
    }
    out += '"';
}

void writeScalar(std::string& out, const Json& json) {
    if (json.is_string()) {
        writeText(out, json.get_ref<const std::string&>());
    } else if (json.is_number_float()) {
        std::array<char, 40> buffer{};
        const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), json.get<double>()).ptr;
        out.append(buffer.data(), end);
    } else {
        out += json.dump();
    }
}

void writeCompact(std::string& out, const Json& json) {
    if (!json.is_structured()) {
        writeScalar(out, json);
        return;
    }
    out += json.is_object() ? '{' : '[';
    bool first = true;
    for (const auto& item : json.items()) {
        out += first ? "" : ",";
        first = false;
        if (json.is_object()) {
            writeText(out, item.key());
            out += ':';
        }
        writeCompact(out, item.value());
    }
    out += json.is_object() ? '}' : ']';
}

void writeFormatted(std::string& out, const Json& json, size_t depth) {
    if (!json.is_structured()) {
        writeScalar(out, json);
        return;
    }
    if (json.empty()) {
        out += json.is_object() ? "{}" : "[]";
        return;
    }
    const std::string indent = "\r" + std::string(depth, '\t');
    out += json.is_object() ? '{' : '[';
    bool first = true;
    for (const auto& item : json.items()) {
        out += first ? "" : ",";
        first = false;
        out += indent + '\t';
        const bool nested = item.value().is_structured() && !item.value().empty();
        if (json.is_object()) {
            writeText(out, item.key());
            out += nested ? " : " + indent + '\t' : " : ";
        }
        writeFormatted(out, item.value(), depth + 1);
    }
    out += indent;
    out += json.is_object() ? '}' : ']';
}

} // namespace

std::shared_ptr<const ParsedJson> parsedJson(const Value& value) {
    if (const auto* known = dynamic_cast<const ParsedJson*>(value.note())) {
        return {std::shared_ptr<const ParsedJson>(), known}; // not owned: the value keeps it
    }
    auto result = read(value.asText());
    value.setNote(result);
    return result;
}

std::shared_ptr<const ParsedJson> requireJson(const Value& value) {
    auto parsed = parsedJson(value);
    if (!parsed->error.empty()) {
        throw JsonError(parsed->error);
    }
    return parsed;
}

Json firstJson(std::u16string_view text) {
    const std::string bytes = toUtf8(text);
    Json result;
    try {
        if (isTooDeep(bytes)) {
            throw JsonError(place(bytes, 0) + "More than 1000 objects and arrays inside each other.");
        }
        std::istringstream in(bytes);
        in >> result;
    } catch (const Json::parse_error& error) {
        throw JsonError(messageOf(error, bytes));
    } catch (const Json::out_of_range&) {
        throw JsonError(place(bytes, 0) + std::string(kNoValue));
    }
    return result;
}

std::u16string jsonText(const Json& json) {
    std::string out;
    writeCompact(out, json);
    return fromUtf8(out);
}

std::u16string formattedJson(const Json& json) {
    std::string out;
    writeFormatted(out, json, 0);
    return fromUtf8(out);
}

std::u16string ParsedJson::text() const {
    return jsonText(root);
}

Json takeJson(Value value) {
    const Json& root = requireJson(value)->root; // kept by the note
    const auto note = std::move(value).takeNote();
    return note != nullptr && note.use_count() == 1 ? std::move(const_cast<Json&>(root)) : Json(root);
}

Value jsonValue(Json json, bool declared) {
    if (!json.is_structured()) {
        return Value::text(jsonText(json)); // a text that is no document, whoever wrote it
    }
    auto parsed = std::make_shared<ParsedJson>();
    parsed->root = std::move(json);
    parsed->declared = declared;
    return Value::written(std::move(parsed));
}

} // namespace host

#include "host/console/show.h"

#include "host/values/text.h"

#include <algorithm>

namespace host {

namespace {

// Returns the four characters of a type, with question marks for those that are not printable ASCII.
std::string typeName(StreamType type) {
    std::string name(type.characters.begin(), type.characters.end());
    std::replace_if(name.begin(), name.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return name;
}

std::string summary(const Container& container) {
    std::string result;
    const auto add = [&result](const std::string& part) { result += (result.empty() ? "" : ", ") + part; };
    if (container.isEmpty()) {
        add("empty");
    }
    if (const auto names = container.fileNames()) {
        add("\"" + toUtf8(*names) + "\"");
    }
    if (const auto size = container.pictureSize()) {
        add(std::to_string(size->first) + " x " + std::to_string(size->second));
    }
    for (const Container::Stream& stream : container) {
        if (stream.type() != Container::kFileNames && stream.type() != Container::kSize) {
            const size_t size = stream.bytes().size();
            add(typeName(stream.type()) + " " + std::to_string(size) + (size == 1 ? " byte" : " bytes"));
        }
    }
    return "[container: " + result + "]";
}

// Returns the text of [value] with [lineEnd] for every line end.
std::string shown(const Value& value, std::string_view lineEnd) {
    std::string result;
    const std::string text =
        value.type() == ValueType::container ? summary(value.asContainer()) : toUtf8(value.asText());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\0') {
            result += "\u2400"; // its symbol
            continue;
        }
        if (text[i] != '\r' && text[i] != '\n') {
            result += text[i];
            continue;
        }
        i += text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n' ? 1 : 0;
        result += lineEnd;
    }
    return result;
}

} // namespace

std::string oneLine(const Value& value) {
    return shown(value, "\u00B6");
}
std::string severalLines(const Value& value) {
    return shown(value, "\n");
}

} // namespace host

#include "host/console/Show.h"

#include "host/values/Text.h"

namespace host {

namespace {

// The text of [value] with every line end replaced.
std::string shown(const Value& value, std::string_view lineEnd) {
    if (value.type() == ValueType::container) {
        const size_t streams = value.asContainer().count();
        return "[container: " + std::to_string(streams) + (streams == 1 ? " stream]" : " streams]");
    }
    std::string result;
    const std::string text = toUtf8(value.asText());
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

#include "host/console/palette.h"

#include <cstdlib>
#include <unistd.h>

namespace host {

bool hasCursor() {
    const char* const terminal = std::getenv("TERM");
    return isatty(STDOUT_FILENO) != 0 && terminal != nullptr && *terminal != '\0' &&
           std::string_view(terminal) != "dumb";
}

Palette Palette::ofOutput() {
    const char* const refused = std::getenv("NO_COLOR");
    return {hasCursor() && (refused == nullptr || *refused == '\0')};
}

std::string Palette::paint(std::string_view text, std::string_view attribute) const {
    if (!isOn || attribute.empty() || text.empty()) {
        return std::string(text);
    }
    return "\x1b[" + std::string(attribute) + "m" + std::string(text) + "\x1b[m";
}

std::string_view attributeOf(TextRole role) {
    switch (role) {
    case TextRole::comment:
        return "90"; // grey
    case TextRole::text:
        return "32"; // green
    case TextRole::number:
    case TextRole::constant:
        return "36"; // cyan
    case TextRole::variable:
        return "35"; // magenta
    case TextRole::function:
    case TextRole::property:
        return "94"; // light blue
    case TextRole::keyword:
        return Palette::kStrong;
    case TextRole::unknown:
        return Palette::kError;
    }
    return {};
}

std::string_view attributeOf(ValueType type) {
    switch (type) {
    case ValueType::text:
        return attributeOf(TextRole::text);
    case ValueType::number:
        return attributeOf(TextRole::number);
    case ValueType::date:
    case ValueType::time:
    case ValueType::timestamp:
        return "33"; // yellow
    default:
        return {};
    }
}

} // namespace host

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

// Returns what the only stream of a container is called.
std::string_view kindOf(StreamType type) {
    struct Kind {
        StreamType type;
        std::string_view name;
    };
    static constexpr Kind kKinds[] = {
        {StreamType::of("PNGf"), "picture PNG"}, {StreamType::of("JPEG"), "picture JPEG"},
        {StreamType::of("GIFf"), "picture GIF"}, {StreamType::of("BMPf"), "picture BMP"},
        {StreamType::of("FILE"), "file"},
    };
    for (const Kind& kind : kKinds) {
        if (kind.type == type) {
            return kind.name;
        }
    }
    return {};
}

// Returns "3,412 bytes".
std::string sizeText(size_t size) {
    std::string digits = std::to_string(size);
    for (size_t i = digits.size(); i > 3; i -= 3) {
        digits.insert(i - 3, ",");
    }
    return digits + (size == 1 ? " byte" : " bytes");
}

std::string summary(const Container& container) {
    std::vector<const Container::Stream*> streams;
    for (const Container::Stream& stream : container) {
        if (stream.type() != Container::kFileNames && stream.type() != Container::kSize) {
            streams.push_back(&stream);
        }
    }
    const std::string_view kind = streams.size() == 1 ? kindOf(streams[0]->type()) : "";
    std::string result(kind.empty() ? "container" : kind);
    if (container.isEmpty()) {
        result += ", empty";
    }
    if (const auto names = container.fileNames()) {
        result += ", \"" + toUtf8(*names) + "\"";
    }
    if (const auto size = container.pictureSize()) {
        result += ", " + std::to_string(size->first) + " x " + std::to_string(size->second);
    }
    for (const Container::Stream* stream : streams) {
        result +=
            (kind.empty() ? ", " + typeName(stream->type()) + " " : ", ") + sizeText(stream->bytes().size());
    }
    return "[" + result + "]";
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

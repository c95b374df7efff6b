#include "frameworks/AddressBook/vcard/content_line.h"

#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/encoding.h"

#include <algorithm>
#include <array>

namespace addressbook::vcard {

namespace {

// The parameters that version 2.1 writes without a name; any other word is a TYPE.
struct BareParam {
    std::string_view word, name;
};
constexpr std::array kBareParams{
    BareParam{"7BIT", "ENCODING"},   BareParam{"8BIT", "ENCODING"},
    BareParam{"BASE64", "ENCODING"}, BareParam{"QUOTED-PRINTABLE", "ENCODING"},
    BareParam{"CID", "VALUE"},       BareParam{"CONTENT-ID", "VALUE"},
    BareParam{"INLINE", "VALUE"},    BareParam{"URL", "VALUE"},
};

bool isNameByte(char byte) {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9') ||
           byte == '-' || byte == '_';
}

// Longer ones are no names but data; and a longer one could be folded, so that it reads like data. The hyphen
// after an X tells it from data.
constexpr std::size_t kMaxName = 67, kMaxExtensionName = 1000;

bool hasLengthOfName(std::string_view text) {
    const bool extension = text.starts_with("X-") || text.starts_with("x-");
    return !text.empty() && text.size() <= (extension ? kMaxExtensionName : kMaxName);
}

// Whether programs write such a name, be it against the standards: "X-messaging/aim-All", "X-My Field".
bool isName(std::string_view text) {
    constexpr std::string_view kOdd = " ./()+&#@!*'";
    return hasLengthOfName(text) && kOdd.find(text.front()) == std::string_view::npos &&
           std::all_of(text.begin(), text.end(), [&](char byte) {
               return isNameByte(byte) || byte < 0 || kOdd.find(byte) != std::string_view::npos;
           });
}

// A parameter value with its quotes and the caret escapes taken away.
std::string parameterText(std::string_view raw) {
    std::string text;
    for (std::size_t at = 0; at < raw.size(); ++at) {
        const char next = at + 1 < raw.size() ? raw[at + 1] : '\0';
        if (raw[at] == '"') {
            continue;
        }
        if (raw[at] == '^' && (next == '^' || next == 'n' || next == '\'')) {
            text.push_back(next == '^' ? '^' : next == 'n' ? '\n' : '"');
            ++at;
        } else {
            text.push_back(raw[at]);
        }
    }
    return text;
}

Param parseParam(std::string_view text) {
    Param param{"TYPE", {}};
    if (const std::size_t equals = text.find('='); equals != std::string_view::npos) {
        param.name = upperCase(trim(text.substr(0, equals)));
        text = trim(text.substr(equals + 1));
    } else {
        text = trim(text);
        const std::string upper = upperCase(text);
        const auto* row = std::find_if(kBareParams.begin(), kBareParams.end(),
                                       [&](const BareParam& bare) { return bare.word == upper; });
        if (row != kBareParams.end()) {
            param.name = row->name;
        }
    }
    // TYPE="work,voice" is a list as well.
    const bool isType = param.name == "TYPE";
    for (const std::string_view part : splitQuoted(text, ',')) {
        std::string value(trim(parameterText(part)));
        if (!isType) {
            param.values.push_back(std::move(value));
            continue;
        }
        for (std::string_view word : splitEscaped(value, ',')) {
            word = trim(word);
            if (word.size() > 5 && equalsIgnoringCase(word.substr(0, 5), "TYPE=")) { // TYPE=HOME,TYPE=VOICE
                word.remove_prefix(5);
            }
            param.values.emplace_back(word);
        }
    }
    return param;
}

} // namespace

bool isPlainName(std::string_view name) {
    return hasLengthOfName(name) && std::all_of(name.begin(), name.end(), isNameByte);
}

bool endsWithBackslash(std::string_view text) {
    const std::size_t last = text.find_last_not_of('\\');
    return (text.size() - (last == std::string_view::npos ? 0 : last + 1)) % 2 == 1;
}

bool takesLooseLines(const ContentLine& line) {
    if (line.transfer == Transfer::base64) {
        return false;
    }
    return line.key == "NOTE" || line.key == "LABEL" || endsWithBackslash(line.value);
}

bool isTakenBy(const ContentLine& before, const ContentLine& line) {
    return !isPlainName(line.name) && !line.key.starts_with("X-") && takesLooseLines(before);
}

std::string_view ContentLine::param(std::string_view upperName) const {
    for (const Param& each : params) {
        if (each.name == upperName && !each.values.empty()) {
            return each.values.front();
        }
    }
    return {};
}

std::string ContentLine::text() const {
    return unescape(value, transfer == Transfer::quotedPrintable);
}

std::vector<std::string> ContentLine::components(std::size_t most) const {
    std::vector<std::string> parts;
    for (const std::string_view part : splitEscaped(value, ';', most)) {
        parts.push_back(std::string(trim(unescape(part, transfer == Transfer::quotedPrintable))));
    }
    return parts;
}

std::optional<ContentLine> parseContentLine(const PropertyLine& line, const std::string& fallback) {
    const std::size_t colon = headerEnd(line.text);
    if (colon == std::string::npos) {
        return std::nullopt;
    }
    const std::string header =
        line.utf8 ? line.text.substr(0, colon) : toUtf8(line.text.substr(0, colon), fallback);
    const std::vector<std::string_view> parts = splitQuoted(header, ';');

    ContentLine result;
    std::string_view name = trim(parts.front());
    if (const std::size_t dot = name.find('.');
        dot != std::string_view::npos && isPlainName(name.substr(0, dot)) && isName(name.substr(dot + 1))) {
        result.group = name.substr(0, dot);
        name = name.substr(dot + 1);
    }
    if (!isName(name)) {
        return std::nullopt;
    }
    result.name = name;
    result.key = upperCase(name);
    result.number = line.number;
    result.transfer = declaredTransfer(header);

    std::string charset = fallback;
    for (std::size_t at = 1; at < parts.size(); ++at) {
        if (trim(parts[at]).empty()) {
            continue;
        }
        Param param = parseParam(parts[at]);
        if (param.name == "CHARSET") {
            charset = param.values.empty() ? fallback : param.values.front();
        } else if (param.name != "ENCODING" && isName(param.name)) {
            result.params.push_back(std::move(param));
        }
    }

    std::string_view value = std::string_view(line.text).substr(colon + 1);
    const bool decoded = result.transfer == Transfer::quotedPrintable;
    if ((line.utf8 && !decoded) || (result.transfer == Transfer::base64 && isAscii(value))) {
        result.value = value;
    } else {
        std::string bytes = decoded ? decodeQuotedPrintable(value) : std::string(value);
        result.raw = charset.empty() && !isAscii(bytes);
        result.value = result.raw ? std::move(bytes) : toUtf8(std::move(bytes), charset);
    }
    std::erase(result.value, '\0');
    return result;
}

std::string renderParams(const std::vector<Param>& params) {
    std::string text;
    for (const Param& param : params) {
        text += ';' + param.name + '=';
        for (std::size_t at = 0; at < param.values.size(); ++at) {
            if (at) {
                text += ',';
            }
            std::string value;
            for (const char byte : param.values[at]) {
                if (byte == '^') {
                    value += "^^";
                } else if (byte == '"') {
                    value += "^'";
                } else if (byte == '\n' || byte == '\r') {
                    value += "^n";
                } else {
                    value += byte;
                }
            }
            // A caret needs no quotes, but some readers stop at one outside them.
            const bool quote = value.find_first_of(",;:^") != std::string::npos;
            text += quote ? '"' + value + '"' : value;
        }
    }
    return text;
}

std::string renderValue(const ContentLine& line) {
    if (line.transfer == Transfer::base64) {
        return withoutBlanks(line.value);
    }
    std::string text;
    for (std::size_t at = 0; at < line.value.size(); ++at) {
        const char byte = line.value[at];
        if (byte == '\r' || byte == '\n') { // quoted-printable text has real line ends
            text += "\\n";
            at += byte == '\r' && at + 1 < line.value.size() && line.value[at + 1] == '\n' ? 1 : 0;
        } else if (byte == '\\' && at + 1 < line.value.size()) {
            const char next = line.value[++at];
            const bool noLineEnd = line.transfer == Transfer::quotedPrintable && (next == 'n' || next == 'N');
            text.append(noLineEnd ? "\\\\" : "\\") += next;
        } else {
            text += byte;
        }
    }
    return text;
}

std::string render(const ContentLine& line) {
    std::string text = line.group.empty() ? std::string() : line.group + '.';
    text += line.name;
    text += renderParams(line.params);
    text += line.transfer == Transfer::base64 ? ";ENCODING=b:" : ":";
    return text + renderValue(line);
}

std::string excerpt(std::string_view line) {
    constexpr std::size_t kMost = 60;
    std::size_t end = std::min(line.size(), kMost);
    while (end < line.size() && end > 0 && isContinuation(line[end])) {
        --end;
    }
    std::string plain = utf8FromUtf16(utf16FromUtf8(line.substr(0, end)));
    for (char& byte : plain) {
        if ((byte >= 0 && byte < ' ') || byte == 0x7F) {
            byte = '?';
        }
    }
    return '"' + plain + (end < line.size() ? "...\"" : "\"");
}

void appendFolded(std::string& out, std::string_view line) {
    constexpr std::size_t kWidth = 75;
    std::size_t width = kWidth;
    while (line.size() > width) {
        std::size_t cut = width;
        while (cut > width - 4 && isContinuation(line[cut])) {
            --cut;
        }
        out.append(line.substr(0, cut)).append("\r\n ");
        line.remove_prefix(cut);
        width = kWidth - 1; // the space counts
    }
    out.append(line).append("\r\n");
}

} // namespace addressbook::vcard

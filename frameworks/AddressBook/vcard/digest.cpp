#include "frameworks/AddressBook/vcard/digest.h"

#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace addressbook::vcard {

namespace {

constexpr char kBetweenParts = '\x1F';

// The parameters in one order, TYPE words one by one and in capitals, as version 2.1 writes them.
std::vector<std::string> paramsOf(const ContentLine& line) {
    std::vector<std::string> texts;
    for (const Param& param : line.params) {
        for (const std::string& value : param.values) {
            texts.push_back(param.name + '=' + (param.name == "TYPE" ? upperCase(value) : value));
        }
    }
    std::sort(texts.begin(), texts.end());
    return texts;
}

std::string textOf(const ContentLine& line) {
    std::string text = line.key;
    for (const std::string& param : paramsOf(line)) {
        text.append(1, ';').append(param);
    }
    text += ':';
    if (line.transfer == Transfer::base64) {
        std::copy_if(line.value.begin(), line.value.end(), std::back_inserter(text),
                     [](char byte) { return byte != ' ' && byte != '\t'; });
        return text;
    }
    for (const std::string_view part : splitEscaped(line.value, ';', kMaxParts)) {
        if (part.find_first_of("\\\r") == std::string_view::npos) { // nearly always
            text.append(trim(part));
        } else {
            text.append(trim(unescape(part, line.transfer == Transfer::quotedPrintable)));
        }
        text += kBetweenParts;
    }
    text.erase(text.find_last_not_of(kBetweenParts) + 1); // empty parts at the end say nothing
    return text;
}

} // namespace

std::string contentsOf(std::span<const ContentLine> lines) {
    std::vector<std::string> texts;
    texts.reserve(lines.size());
    for (const ContentLine& line : lines) {
        if (line.key != "VERSION" && line.key != "PRODID" && line.key != "REV") {
            if (std::string text = textOf(line); !text.ends_with(':')) {
                texts.push_back(std::move(text));
            }
        }
    }
    std::sort(texts.begin(), texts.end());
    std::string all;
    for (const std::string& text : texts) {
        all.append(text).append(1, '\n');
    }
    return all;
}

std::string digestOf(const std::string& contents, bool hasUid) {
    return hasUid ? std::to_string(std::hash<std::string>()(contents)) : uuidOf(contents);
}

} // namespace addressbook::vcard

// Writing: the lines for the values of a card, and the unknown lines that were kept.

#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/line_values.h"
#include "frameworks/AddressBook/vcard/line_writer.h"
#include "frameworks/AddressBook/vcard/preserved_parameters.h"

#include <algorithm>

namespace addressbook::vcard {
namespace {

// Returns the unique id in a line that was kept; nothing for any other line.
std::optional<std::string> uidIn(const std::string& text) {
    if (!text.starts_with("UID")) {
        return std::nullopt;
    }
    const auto line = parseStored(text);
    return line && line->key == "UID" ? std::optional(std::string(trim(line->text()))) : std::nullopt;
}

} // namespace

std::string write(const Card& card, WrittenVersion version) {
    LineWriter writer(version);
    writer.append("BEGIN:VCARD");
    writer.append(version == WrittenVersion::v3 ? "VERSION:3.0" : "VERSION:4.0");
    std::vector<CardLine> lines = linesWithAdditions(card);
    writer.prepare(lines);
    for (const CardLine& line : lines) {
        writer.add(line);
    }
    if (const std::string categories = categoriesLine(card); !categories.empty()) {
        writer.append(categories);
    }
    const std::vector<std::string> stored = linesOfNoProperty(card);
    const std::string own = card.uid.empty() ? "" : uidLine(card.uid, version);
    // The first of them is that of the card.
    const bool hasOthers = std::any_of(stored.begin(), stored.end(), [&](const std::string& text) {
        const auto uid = uidIn(text);
        return uid && "UID:" + *uid != own;
    });
    for (const std::string& text : stored) {
        if (hasOthers || !uidIn(text)) {
            writer.addStored(text);
        }
    }
    if (!card.uid.empty()) {
        if (!hasOthers) {
            writer.append(own);
        }
        writer.append("X-ABUID:" + card.uid);
    }
    writer.append("END:VCARD");
    return writer.take();
}

std::optional<std::string> keptUid(const Value& unknownLines) {
    for (const std::string& text : storedLines(unknownLines)) {
        if (auto uid = uidIn(text)) {
            return uid;
        }
    }
    return std::nullopt;
}

std::string memberName(std::string_view uid, const Value& unknownLines) {
    const std::string written = keptUid(unknownLines).value_or(uuidOf(uid));
    return schemeOf(written).empty() ? "urn:uuid:" + written : written;
}

std::string memberLine(const std::string& member) {
    return std::string(kMember) + escapeUri(member);
}

std::optional<std::string> memberIn(std::string_view line) {
    return line.starts_with(kMember) ? std::optional(unescape(line.substr(kMember.size()))) : std::nullopt;
}

std::optional<std::string> keptFullName(const Card& card) {
    for (const std::string& text : storedLines(unknownLinesOf(card))) {
        if (!text.starts_with("+FN;")) {
            continue;
        }
        auto addition = parseStored(text.substr(1));
        if (addition && addition->key == "FN" && addition->text() == shownName(card)) {
            if (const std::string name = takeAsRead(addition->params); !name.empty()) {
                return unescape(name);
            }
        }
    }
    return std::nullopt;
}

} // namespace addressbook::vcard

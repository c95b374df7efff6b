// Writing: the lines that the address book knows, joined by those that it only keeps.

#include "frameworks/AddressBook/vcard/card_lines.h"
#include "frameworks/AddressBook/vcard/content_line.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <map>

namespace addressbook::vcard {

namespace {

std::optional<ContentLine> parseStored(std::string text) {
    PropertyLine line;
    line.text = std::move(text);
    line.utf8 = true;
    return parseContentLine(line);
}

std::string inGroup(const std::string& group, std::string_view line) {
    std::string text = group.empty() ? std::string() : group + '.';
    text += line;
    return text;
}

// Gives each line the parameters and the group that the additions among [stored] have for it.
void applyAdditions(std::vector<CardLine>& lines, const std::vector<std::string>& stored) {
    std::multimap<std::string, CardLine*> byText; // equal ones in their order
    for (const std::string& text : stored) {
        if (!text.starts_with(kAddition)) {
            continue;
        }
        const auto addition = parseStored(text.substr(1));
        if (!addition) {
            continue;
        }
        if (byText.empty()) {
            for (CardLine& line : lines) {
                byText.emplace(line.name + ':' + std::string(matchedValue(line)), &line);
            }
        }
        const std::string key = addition->name + ':' + addition->value;
        const auto found = byText.lower_bound(key);
        if (found == byText.end() || found->first != key) {
            continue; // the value has changed since
        }
        found->second->params += renderParams(addition->params);
        found->second->group = addition->group;
        byText.erase(found);
    }
}

} // namespace

std::string write(const Card& card) {
    std::vector<std::string> stored;
    if (const auto found = card.values.find(std::string(property::kUnknownLines));
        found != card.values.end()) {
        if (const auto* array = found->second.as<Array>()) {
            for (const Value& each : *array) {
                if (const auto* text = each.as<std::string>()) {
                    stored.push_back(*text);
                }
            }
        }
    }

    std::vector<CardLine> lines = cardLines(card);
    applyAdditions(lines, stored);

    std::string out = "BEGIN:VCARD\r\nVERSION:3.0\r\n";
    GroupNames groups;
    std::map<std::string, const CardLine*> firstInGroup;
    for (const CardLine& line : lines) {
        std::string group = groups.renamed(line.group);
        bool hasLabel = false;
        if (const CardLine*& first = firstInGroup[group]; !group.empty() && !first) {
            first = &line;
        } else if (!group.empty() && first->label == line.label && line.country.empty()) {
            hasLabel = true;
        } else {
            group.clear(); // what belongs to the group's first line would be taken for this one's
        }
        if (group.empty() && (!line.label.empty() || !line.country.empty())) {
            group = groups.fresh();
        }
        appendFolded(out, inGroup(group, line.name + line.params + ':' + line.value));
        if (!line.label.empty() && !hasLabel) {
            appendFolded(out, inGroup(group, "X-ABLabel:" + escape(line.label)));
        }
        if (!line.country.empty()) {
            appendFolded(out, inGroup(group, "X-ABADR:" + escape(line.country)));
        }
    }
    bool hasUid = false;
    for (const std::string& text : stored) {
        if (text.starts_with(kAddition)) {
            continue;
        }
        auto line = parseStored(text);
        if (!line) {
            continue;
        }
        hasUid = hasUid || line->key == "UID";
        line->group = groups.renamed(line->group);
        appendFolded(out, render(*line));
    }
    if (!card.uid.empty()) {
        if (!hasUid) {
            appendFolded(out, "UID:" + uuidOf(card.uid));
        }
        appendFolded(out, "X-ABUID:" + card.uid);
    }
    std::erase(out, '\0'); // no reader takes it for text
    return out + "END:VCARD\r\n";
}

} // namespace addressbook::vcard

// Writing: the lines for the values of a card, and the unknown lines that were kept.

#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/card_lines.h"
#include "frameworks/AddressBook/vcard/content_line.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/labels.h"
#include "frameworks/AddressBook/vcard/line_values.h"
#include "frameworks/AddressBook/vcard/preserved_parameters.h"
#include "frameworks/AddressBook/vcard/vcard.h"
#include "frameworks/AddressBook/vcard/version4.h"

#include <map>

namespace addressbook::vcard {

namespace {

constexpr std::string_view kMember = "X-ADDRESSBOOKSERVER-MEMBER:";

std::optional<ContentLine> parseStored(std::string text) {
    PropertyLine line;
    line.text = std::move(text);
    line.utf8 = true;
    return parseContentLine(line);
}

// Gives each line the parameters and the group of its addition among [stored].
void applyAdditions(std::vector<CardLine>& lines, const std::vector<std::string>& stored) {
    std::multimap<std::string, CardLine*> byText; // equal lines in their order
    for (const std::string& text : stored) {
        if (!text.starts_with(kAddition)) {
            continue;
        }
        auto addition = parseStored(text.substr(1));
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
            continue; // its line's value has changed since
        }
        CardLine& line = *found->second;
        if (const std::string_view value = addition->param(kAsRead); !value.empty()) {
            line.value = value;
            if (line.rule && (line.rule->shape == Shape::day || line.rule->shape == Shape::days)) {
                line.params = ";value=date-time";
            }
            std::erase_if(addition->params, [](const Param& param) { return param.name == kAsRead; });
        }
        line.extra = std::move(addition->params);
        line.group = addition->group;
        byText.erase(found);
    }
}

std::vector<std::string> storedLines(const Value& value) {
    std::vector<std::string> stored;
    if (const auto* array = value.as<Array>()) {
        for (const Value& each : *array) {
            if (const auto* text = each.as<std::string>()) {
                stored.push_back(*text);
            }
        }
    }
    return stored;
}

const Value& unknownLinesOf(const Card& card) {
    static const Value kNone;
    const auto found = card.values.find(std::string(property::kUnknownLines));
    return found == card.values.end() ? kNone : found->second;
}

// Returns the parameters for label and preference, and those that no property holds.
std::string paramsOf(const CardLine& line, WrittenVersion version) {
    std::string text;
    if (version == WrittenVersion::v3) {
        text = line.params;
        if (line.rule && line.rule->shape == Shape::links) {
            text += ";type=INTERNET";
        }
        for (const std::string_view type : line.types) {
            text.append(";type=").append(type);
        }
        text += line.preferred ? ";type=pref" : "";
    } else {
        text = line.preferred ? ";PREF=1" + line.params : line.params;
        for (const std::string_view type : line.types) {
            text.append(";TYPE=").append(type);
        }
    }
    return text + renderParams(line.extra);
}

// Whether the label is written as TYPE words, so that it needs no X-ABLabel.
bool typesSayLabel(const CardLine& line) {
    for (const Param& param : line.extra) {
        if (param.name == "TYPE" && line.rule) {
            return meaningOf(param.values, entriesOf(*line.rule)).label == line.label;
        }
    }
    return false;
}

class CardWriter {
  public:
    explicit CardWriter(WrittenVersion version) : version_(version) {
        out_ = version == WrittenVersion::v3 ? "BEGIN:VCARD\r\nVERSION:3.0\r\n"
                                             : "BEGIN:VCARD\r\nVERSION:4.0\r\n";
    }

    std::string run(const Card& card) {
        const std::vector<std::string> stored = storedLines(unknownLinesOf(card));
        std::vector<CardLine> lines = cardLines(card);
        for (const std::string& text : stored) {
            if (text.starts_with(kMember)) { // of a member that is not in the address book
                CardLine& line = lines.emplace_back();
                line.name = kMember.substr(0, kMember.size() - 1);
                line.value = text.substr(kMember.size());
            }
        }
        applyAdditions(lines, stored);
        for (CardLine& line : lines) {
            writeKnown(line);
        }
        writeCategories(card);
        for (const std::string& text : stored) {
            if (!text.starts_with(kAddition) && !text.starts_with(kMember)) {
                writeUnknown(text);
            }
        }
        if (!card.uid.empty()) {
            if (!hasUid_) {
                append({}, (version_ == WrittenVersion::v3 ? "UID:" : "UID:urn:uuid:") + uuidOf(card.uid));
            }
            append({}, "X-ABUID:" + card.uid);
        }
        std::erase(out_, '\0'); // readers do not accept it in text
        return out_ + "END:VCARD\r\n";
    }

  private:
    void append(const std::string& group, std::string_view line) {
        std::string text = group.empty() ? std::string() : group + '.';
        appendFolded(out_, text.append(line));
    }

    void writeKnown(CardLine& line) {
        if (version_ == WrittenVersion::v4) {
            toVersion4(line, onlyLines_);
        }
        if (line.label && typesSayLabel(line)) {
            line.label.reset();
        }
        // Of several preferred entries only the first is marked.
        bool& preferred = preferred_[line.property];
        preferred = preferred || line.preferred;
        if (!preferred) {
            dropPreference(line.extra, false);
        }
        std::string group = groups_.renamed(line.group);
        bool hasLabel = false;
        if (const CardLine*& first = firstInGroup_[group]; !group.empty() && !first) {
            first = &line;
        } else if (!group.empty() && first->label == line.label && line.country.empty()) {
            hasLabel = true;
        } else {
            group.clear(); // what belongs to the group's first line would be taken for this one's
        }
        if (group.empty() && (line.label || !line.country.empty())) {
            group = groups_.fresh();
        }
        append(group, line.name + paramsOf(line, version_) + ':' + line.value);
        if (line.label && !hasLabel) {
            append(group, "X-ABLabel:" + escape(*line.label));
        }
        if (!line.country.empty()) {
            append(group, "X-ABADR:" + escape(line.country));
        }
    }

    void writeCategories(const Card& card) {
        std::string names;
        for (const std::string& name : card.categories) {
            names += (names.empty() ? "" : ",") + escape(name);
        }
        if (!names.empty()) {
            append({}, "CATEGORIES:" + names);
        }
    }

    void writeUnknown(const std::string& text) {
        auto line = parseStored(text);
        if (!line) {
            return;
        }
        hasUid_ = hasUid_ || line->key == "UID";
        line->group = groups_.renamed(line->group);
        if (version_ == WrittenVersion::v4) {
            toVersion4(*line, onlyLines_);
        }
        append({}, render(*line));
    }

    WrittenVersion version_;
    std::string out_;
    GroupNames groups_;
    std::map<std::string, const CardLine*> firstInGroup_;
    std::map<std::string_view, bool> preferred_; // property -> a preferred entry is written
    OnlyLines onlyLines_;                        // of version 4.0
    bool hasUid_ = false;
};

} // namespace

std::string write(const Card& card, WrittenVersion version) {
    return CardWriter(version).run(card);
}

std::optional<std::string> keptUid(const Value& unknownLines) {
    for (const std::string& text : storedLines(unknownLines)) {
        if (!text.starts_with("UID")) {
            continue;
        }
        if (const auto line = parseStored(text); line && line->key == "UID") {
            return std::string(trim(line->text()));
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
        const auto addition = parseStored(text.substr(1));
        if (addition && addition->key == "FN" && addition->text() == shownName(card) &&
            !addition->param(kAsRead).empty()) {
            return unescape(addition->param(kAsRead));
        }
    }
    return std::nullopt;
}

} // namespace addressbook::vcard

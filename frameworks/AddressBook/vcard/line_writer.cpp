#include "frameworks/AddressBook/vcard/line_writer.h"

#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/labels.h"
#include "frameworks/AddressBook/vcard/origin.h"
#include "frameworks/AddressBook/vcard/preserved_parameters.h"

#include <set>
#include <utility>

namespace addressbook::vcard {

namespace {

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
        if (std::string value = takeAsRead(addition->params); !value.empty()) {
            line.value = std::move(value);
            if (line.rule && (line.rule->shape == Shape::day || line.rule->shape == Shape::days)) {
                line.params = ";value=date-time";
            }
        }
        line.extra = std::move(addition->params);
        line.group = addition->group;
        byText.erase(found);
    }
}

// Names the labels of entries that have an unknown label in their group as well.
void nameLabels(std::vector<CardLine>& lines, const Card& card, const std::vector<std::string>& stored) {
    std::set<std::string> groups;
    for (const std::string& text : stored) {
        if (!text.starts_with(kAddition)) {
            if (const auto line = parseStored(text); line && line->key == "X-ABLABEL") {
                groups.insert(upperCase(line->group));
            }
        }
    }
    if (groups.empty()) {
        return;
    }
    for (CardLine& line : lines) {
        if (line.group.empty() || !groups.contains(upperCase(line.group))) {
            continue;
        }
        const auto found = card.values.find(std::string(line.property));
        if (const auto* list = found == card.values.end() ? nullptr : found->second.as<MultiValue>()) {
            line.ownLabel = list->entries[line.entry].label;
        }
    }
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

// Whether the label is written as TYPE words, so that it needs no X-ABLabel. Those of a relation of version 4.0 say
// labels of their own, of which toVersion4() knows.
bool typesSayLabel(const CardLine& line) {
    if (line.name == "RELATED") {
        return false;
    }
    for (const Param& param : line.extra) {
        if (param.name == "TYPE" && line.rule) {
            return meaningOf(param.values, entriesOf(*line.rule)).label == line.label;
        }
    }
    return false;
}

} // namespace

std::optional<ContentLine> parseStored(std::string text) {
    PropertyLine line;
    line.text = std::move(text);
    line.utf8 = true;
    return parseContentLine(line);
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

bool isMemberLine(const Card& card, std::string_view stored) {
    return card.kind == Kind::group && stored.starts_with(kMember);
}

std::vector<CardLine> linesWithAdditions(const Card& card) {
    const std::vector<std::string> stored = storedLines(unknownLinesOf(card));
    std::vector<CardLine> lines = cardLines(card);
    for (const std::string& text : stored) {
        if (isMemberLine(card, text)) { // of a member that is not in the address book
            CardLine& line = lines.emplace_back();
            line.name = kMember.substr(0, kMember.size() - 1);
            line.value = text.substr(kMember.size());
            line.property = kMemberUnit;
            line.entry = lines.size();
        }
    }
    applyAdditions(lines, stored);
    nameLabels(lines, card, stored);
    return lines;
}

std::vector<std::string> linesOfNoProperty(const Card& card) {
    std::vector<std::string> lines = storedLines(unknownLinesOf(card));
    std::erase_if(lines, [&](const std::string& text) {
        return text.starts_with(kAddition) || isMemberLine(card, text);
    });
    return lines;
}

std::string categoriesLine(const Card& card) {
    std::string names;
    for (const std::string& name : card.categories) {
        names += (names.empty() ? "" : ",") + escape(name);
    }
    return names.empty() ? names : "CATEGORIES:" + names;
}

std::string uidLine(std::string_view uid, WrittenVersion version) {
    return (version == WrittenVersion::v3 ? "UID:" : "UID:urn:uuid:") + uuidOf(uid);
}

void LineWriter::prepare(std::vector<CardLine>& lines) {
    if (version_ == WrittenVersion::v4) {
        keepRepeatedDays(lines, onlyLines_);
    }
    for (CardLine& line : lines) {
        prepare(line);
    }
}

void LineWriter::prepare(CardLine& line) {
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
}

std::string LineWriter::text(const CardLine& line) const {
    return line.name + paramsOf(line, version_) + ':' + line.value;
}

void LineWriter::add(const CardLine& line) {
    std::string group = groups_.renamed(line.group);
    std::optional<std::string> label = line.label ? line.label : line.ownLabel;
    bool hasLabel = false;
    if (group.empty()) {
        label = line.label;
    } else if (const auto [first, isFirst] = firstInGroup_.try_emplace(group, label); isFirst) {
        // the group's label is this one's
    } else if (first->second == label && line.country.empty()) {
        hasLabel = true;
    } else {
        group.clear(); // what belongs to the group's first line would be taken for this one's
        label = line.label;
    }
    if (group.empty() && (label || !line.country.empty())) {
        group = groups_.fresh();
    }
    append(text(line), group);
    if (label && !hasLabel) {
        append("X-ABLabel:" + escape(*label), group);
    }
    if (!line.country.empty()) {
        append("X-ABADR:" + escape(line.country), group);
    }
}

void LineWriter::addStored(const std::string& stored) {
    auto line = parseStored(stored);
    if (!line) {
        return;
    }
    line->group = groups_.renamed(line->group);
    if (version_ == WrittenVersion::v4) {
        toVersion4(*line, onlyLines_);
    } else if (isOddLine(*line) || isTakenByLast(*line)) {
        toOddLine(*line);
    }
    append(render(*line));
}

void LineWriter::append(std::string_view line, const std::string& group) {
    std::string text = group.empty() ? std::string() : group + '.';
    last_ = out_.size();
    appendFolded(out_, text.append(line));
}

bool LineWriter::isTakenByLast(const ContentLine& line) const {
    if (isPlainName(line.name)) {
        return false; // as nearly all are
    }
    std::string last;
    for (std::size_t at = last_; at < out_.size();) { // without the line ends, and the blanks behind them
        const std::size_t end = out_.find("\r\n", at);
        last.append(out_, at, end - at);
        at = end + 3;
    }
    const auto before = parseStored(std::move(last));
    return before && isTakenBy(*before, line);
}

std::string LineWriter::take() {
    last_ = 0;
    std::erase(out_, '\0'); // readers do not accept it in text
    return std::exchange(out_, {});
}

} // namespace addressbook::vcard

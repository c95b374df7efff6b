// The entries of lists: telephones, addresses, dates and the like, with their labels.

#include "frameworks/AddressBook/vcard/card_reader.h"

#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/values/uid.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/labels.h"
#include "frameworks/AddressBook/vcard/line_values.h"

namespace addressbook::vcard {

namespace {

// Whether a relation is said by an address of the other's, not by a name.
bool isUri(const ContentLine& line) {
    const std::string_view kind = line.param("VALUE");
    if (equalsIgnoringCase(kind, "text")) {
        return false;
    }
    const std::string_view scheme = schemeOf(line.value);
    return equalsIgnoringCase(kind, "uri") || line.value.find("://") != std::string::npos ||
           equalsIgnoringCase(scheme, "urn") || equalsIgnoringCase(scheme, "mailto");
}

} // namespace

bool CardReader::readEntry(const Rule& rule, ContentLine& line) {
    std::string_view property = rule.property;
    Value value;
    std::string asRead;
    switch (rule.shape) {
    case Shape::days:
        if (const auto date = takeDay(line)) {
            value = *date;
            asRead = timeOf(line);
        } else {
            return trim(line.value).empty() || leaveOutUnlessPartial(line);
        }
        break;
    case Shape::addresses:
        if (!line.value.starts_with(";;") || !listsOf(line).empty()) {
            asRead = componentsOf(line, 7);
        }
        value = readAddress(line);
        break;
    case Shape::messaging:
        value = takeMessaging(line, property, asRead);
        break;
    case Shape::messagingNames:
        value = messagingValue(rule.label, std::string(trim(line.text())), property);
        break;
    case Shape::profiles:
        value = takeProfile(line);
        break;
    case Shape::relations:
        if (isUri(line)) {
            return false;
        }
        value = takeText(rule, line);
        break;
    default:
        value = takeText(rule, line);
    }
    if (value.empty()) {
        return true;
    }
    addEntry(property, rule, std::move(value), std::move(asRead), line);
    return true;
}

// Returns the address in [line]; its country code is in another line of the group.
Value CardReader::readAddress(const ContentLine& line) {
    Dictionary fields = addressFields(line);
    const auto code = countries_.find(upperCase(line.group));
    // Some programs write a whole address there, which is then kept as an unknown line.
    if (code != countries_.end() && !line.group.empty() && code->second.text.size() == 2 &&
        !code->second.used) {
        fields["CountryCode"] = code->second.text;
        code->second.used = true;
    }
    return fields.empty() ? Value() : Value(std::move(fields));
}

void CardReader::addEntry(std::string_view property, const Rule& rule, Value value, std::string asRead,
                          ContentLine& line) {
    Value& slot = card_.values[std::string(property)];
    if (slot.empty()) {
        slot = MultiValue();
    }
    std::vector<Entry>& entries = slot.as<MultiValue>()->entries;

    Addition addition{property, entries.size(), kNotPreferred, line.group, line.key, {}, std::move(asRead)};
    std::optional<std::string> groupLabel;
    if (const auto found = labels_.find(upperCase(line.group));
        found != labels_.end() && !line.group.empty()) {
        found->second.used = true;
        groupLabel = found->second.text;
    }
    const auto take = rule.shape == Shape::relations ? takeRelation : takeLabel;
    std::string label = take(line, rule, groupLabel, addition);
    if (const auto same = sameEntry(rule, property, entries, label, value, line)) {
        addition.entry = *same;
        std::string& known = entries[*same].label;
        if (known == defaultLabel(rule) && !sameLabel(known, label)) {
            known = std::move(label); // the line before had none of its own
        } else if (known != label) {
            addition.params.clear();
            take(line, rule, known, addition);
        }
    } else {
        entries.push_back({newUuid(), std::move(label), std::move(value)});
    }
    additions_.push_back(std::move(addition));
}

// Returns the index of the equal entry that a line of another property has given already: programs write
// a messaging name, an anniversary or a relation under several properties, for other readers.
std::optional<std::size_t> CardReader::sameEntry(const Rule& rule, std::string_view property,
                                                 const std::vector<Entry>& entries, const std::string& label,
                                                 const Value& value, const ContentLine& line) {
    const bool messaging = isMessaging(property) || property == property::kInstantMessage;
    if (!messaging && rule.property != property::kOtherDates && rule.property != property::kRelatedNames) {
        return std::nullopt;
    }
    std::optional<std::size_t> best;
    for (const Addition& each : additions_) {
        if (each.property != property || each.source == line.key || !(entries[each.entry].value == value) ||
            repeated_.contains({each.property, each.entry, line.key})) {
            continue;
        }
        if (sameLabel(entries[each.entry].label, label)) {
            best = each.entry;
            break;
        }
        if (messaging && !best) {
            best = each.entry;
        }
    }
    if (best) {
        repeated_.emplace(property, *best, line.key);
    }
    return best;
}

} // namespace addressbook::vcard

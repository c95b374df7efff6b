#include "frameworks/AddressBook/vcard/card_units.h"

#include "frameworks/AddressBook/values/property.h"
#include "frameworks/AddressBook/vcard/line_writer.h"
#include "frameworks/AddressBook/vcard/origin.h"

#include <algorithm>
#include <map>
#include <utility>

namespace addressbook::vcard {

namespace {

using Key = std::pair<std::string_view, std::string_view>;

Key keyOf(const Unit& unit) {
    return {unit.property, unit.text};
}

std::string withoutGroup(const std::string& stored) {
    auto line = parseStored(stored);
    if (!line || line->group.empty()) {
        return stored;
    }
    line->group.clear();
    return render(*line);
}

std::vector<Key> sortedUnknown(const std::vector<Unit>& units) {
    std::vector<Key> keys;
    for (const Unit& unit : units) {
        if (unit.property == property::kUnknownLines) {
            keys.push_back(keyOf(unit));
        }
    }
    std::sort(keys.begin(), keys.end());
    return keys;
}

} // namespace

std::vector<Unit> unitsOf(const Card& card, WrittenVersion version) {
    LineWriter writer(version);
    std::vector<Unit> units;
    std::map<std::pair<std::string_view, std::size_t>, std::size_t> places;
    std::vector<CardLine> lines = linesWithAdditions(card);
    writer.prepare(lines);
    for (CardLine& line : lines) {
        const auto [place, isNew] = places.try_emplace({line.property, line.entry}, units.size());
        if (isNew) {
            units.push_back({line.property, line.entry, {}, {}, {}});
        }
        Unit& unit = units[place->second];
        unit.text += writer.text(line);
        if (line.label) {
            unit.text += "\nX-ABLabel:" + *line.label;
        }
        if (!line.country.empty()) {
            unit.text += "\nX-ABADR:" + line.country;
        }
        unit.text += '\n';
        unit.lines.push_back(std::move(line));
    }
    if (std::string categories = categoriesLine(card); !categories.empty()) {
        units.push_back({kCategoriesUnit, 0, std::move(categories), {}, {}});
    }
    const std::vector<std::string> stored = storedLines(unknownLinesOf(card));
    for (std::size_t at = 0; at < stored.size(); ++at) {
        if (stored[at].starts_with(kAddition) || isMemberLine(card, stored[at])) {
            continue;
        }
        if (const auto line = parseStored(stored[at]); line && line->key != "UID") {
            units.push_back({property::kUnknownLines, at, withoutGroup(stored[at]), {}, stored[at]});
        }
    }
    return units;
}

bool saySame(const std::vector<Unit>& left, const std::vector<Unit>& right) {
    if (left.size() != right.size()) {
        return false;
    }
    for (std::size_t at = 0; at < left.size(); ++at) {
        const bool unknown = left[at].property == property::kUnknownLines;
        if (unknown != (right[at].property == property::kUnknownLines) ||
            (!unknown && keyOf(left[at]) != keyOf(right[at]))) {
            return false;
        }
    }
    return sortedUnknown(left) == sortedUnknown(right);
}

std::vector<std::size_t> matchUnits(const std::vector<Unit>& before, const std::vector<Unit>& now) {
    std::map<Key, std::vector<std::size_t>> places;
    for (std::size_t at = before.size(); at-- > 0;) {
        places[keyOf(before[at])].push_back(at); // the first is taken first
    }
    std::vector<std::size_t> matches(now.size(), kNew);
    for (std::size_t at = 0; at < now.size(); ++at) {
        if (const auto found = places.find(keyOf(now[at])); found != places.end() && !found->second.empty()) {
            matches[at] = found->second.back();
            found->second.pop_back();
        }
    }
    return matches;
}

} // namespace addressbook::vcard

#include "frameworks/AddressBook/vcard/preserved_parameters.h"

#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/labels.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <utility>

namespace addressbook::vcard {

std::string takeLabel(const ContentLine& line, const std::string& groupLabel, Addition& addition) {
    std::vector<std::string> types;
    for (const Param& param : line.params) {
        if (param.name == "TYPE") {
            types.insert(types.end(), param.values.begin(), param.values.end());
            continue;
        }
        if (param.name == "PREF") {
            const std::string number(line.param("PREF").substr(0, 3));
            addition.preference = std::max(1, std::atoi(number.c_str()));
        }
        addition.params.push_back(param);
    }
    TypeMeaning meaning = meaningOf(types);
    if (meaning.preferred && addition.preference == kNotPreferred) {
        addition.preference = 1;
    }
    // Words that would be the label stay beside one that comes from elsewhere.
    std::vector<std::string>& rest = groupLabel.empty() ? meaning.extra : meaning.words;
    if (!rest.empty()) {
        addition.params.push_back({"TYPE", std::move(rest)});
    }
    return groupLabel.empty() ? meaning.label : groupLabel;
}

void setPrimaries(std::vector<Addition>& additions, Card& card) {
    std::map<std::string_view, Addition*> best;
    for (Addition& each : additions) {
        if (each.preference != kNotPreferred) {
            Addition*& chosen = best[each.property];
            if (!chosen || each.preference < chosen->preference) {
                chosen = &each;
            }
        }
    }
    for (auto& [property, chosen] : best) {
        auto& list = *card.values[std::string(property)].as<MultiValue>();
        if (chosen->entry > 0) {
            list.primary = list.entries[chosen->entry].identifier;
        }
        std::erase_if(chosen->params, [](const Param& param) { return param.name == "PREF"; });
    }
}

std::vector<std::string> additionLines(const std::vector<Addition>& additions, const Card& card,
                                       const std::set<std::string>& groups, GroupNames& groupNames) {
    const auto isWanted = [&](const Addition& each) {
        return !each.params.empty() || groups.contains(upperCase(each.group));
    };
    std::vector<std::string> result;
    if (std::none_of(additions.begin(), additions.end(), isWanted)) {
        return result;
    }
    std::map<std::pair<std::string_view, std::size_t>, const Addition*> byEntry;
    for (const Addition& each : additions) {
        byEntry.emplace(std::pair(each.property, each.entry), &each);
    }
    // Of equal lines each needs an addition as soon as one does: they are told apart by their order.
    const std::vector<CardLine> lines = cardLines(card);
    const auto additionOf = [&](const CardLine& line) {
        const auto found = byEntry.find({line.property, line.entry});
        return found == byEntry.end() ? nullptr : found->second;
    };
    const auto textOf = [](const CardLine& line) {
        return std::pair<std::string_view, std::string_view>(line.name, matchedValue(line));
    };
    std::set<std::pair<std::string_view, std::string_view>> texts;
    for (const CardLine& line : lines) {
        if (const Addition* addition = additionOf(line); addition && isWanted(*addition)) {
            texts.insert(textOf(line));
        }
    }
    for (const CardLine& line : lines) {
        const Addition* addition = additionOf(line);
        if (!addition || !texts.contains(textOf(line))) {
            continue;
        }
        std::string text(1, kAddition);
        if (groups.contains(upperCase(addition->group))) {
            text += groupNames.renamed(addition->group) + '.';
        }
        text += line.name + renderParams(addition->params) + ':';
        text += matchedValue(line);
        result.push_back(std::move(text));
    }
    return result;
}

} // namespace addressbook::vcard

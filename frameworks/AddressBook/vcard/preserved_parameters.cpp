#include "frameworks/AddressBook/vcard/preserved_parameters.h"

#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/labels.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <utility>

namespace addressbook::vcard {

namespace {

// Returns the line's TYPE words, and puts its other parameters and the preference into [addition].
std::vector<std::string> takeTypes(const ContentLine& line, Addition& addition) {
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
    return types;
}

void keepWords(std::vector<std::string> words, const TypeMeaning& meaning, Addition& addition) {
    if (meaning.preferred && addition.preference == kNotPreferred) {
        addition.preference = 1;
        words.emplace_back(kPreferred);
    }
    if (!words.empty()) {
        addition.params.push_back({"TYPE", std::move(words)});
    }
}

} // namespace

std::string takeLabel(const ContentLine& line, const Rule& rule, const std::optional<std::string>& groupLabel,
                      Addition& addition) {
    TypeMeaning meaning = meaningOf(takeTypes(line, addition), entriesOf(rule));
    std::string label = groupLabel      ? *groupLabel
                        : meaning.label ? *meaning.label
                                        : std::string(defaultLabel(rule));
    const std::vector<std::string_view> written = writtenTypes(rule, label);
    std::erase_if(meaning.words, [&](const std::string& word) {
        return std::find(written.begin(), written.end(), upperCase(word)) != written.end();
    });
    keepWords(meaning.words, meaning, addition);
    return label;
}

std::string takeRelation(const ContentLine& line, const Rule& rule,
                         const std::optional<std::string>& groupLabel, Addition& addition) {
    TypeMeaning meaning = meaningOf(takeTypes(line, addition), Entries::any);
    const std::string label = groupLabel ? *groupLabel : relationLabel(meaning.words);
    if (meaning.words.size() == 1 && upperCase(meaning.words[0]) == relationType(label)) {
        meaning.words.clear();
    }
    keepWords(meaning.words, meaning, addition);
    return label.empty() && !groupLabel ? std::string(defaultLabel(rule)) : label;
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
        list.primary = list.entries[chosen->entry].identifier;
    }
    for (Addition& each : additions) {
        if (const auto chosen = best.find(each.property);
            chosen != best.end() && chosen->second->entry == each.entry) {
            dropPreference(each.params, true);
        }
    }
}

void dropPreference(std::vector<Param>& params, bool any) {
    for (Param& param : params) {
        if (param.name == "PREF" && (any || param.values == std::vector<std::string>{"1"})) {
            param.values.clear();
        } else if (param.name == "TYPE") {
            std::erase_if(param.values,
                          [](const std::string& word) { return equalsIgnoringCase(word, kPreferred); });
        }
    }
    std::erase_if(params, [](const Param& param) {
        return param.values.empty() && (param.name == "PREF" || param.name == "TYPE");
    });
}

std::string storedParams(const std::vector<Param>& params, const std::string& asRead) {
    const bool hasName =
        std::any_of(params.begin(), params.end(), [](const Param& param) { return param.name == kAsRead; });
    std::string text = renderParams(params);
    if (!asRead.empty() || hasName) {
        text += renderParams({{std::string(kAsRead), {asRead}}});
    }
    return text;
}

std::string takeAsRead(std::vector<Param>& params) {
    const auto last = std::find_if(params.rbegin(), params.rend(),
                                   [](const Param& param) { return param.name == kAsRead; });
    if (last == params.rend()) {
        return {};
    }
    std::string value = last->values.empty() ? std::string() : std::move(last->values.front());
    params.erase(std::next(last).base());
    return value;
}

std::vector<std::string> additionLines(const std::vector<Addition>& additions, const Card& card,
                                       const std::set<std::string>& groups, GroupNames& groupNames) {
    const auto isWanted = [&](const Addition& each) {
        return !each.params.empty() || !each.asRead.empty() ||
               (!groups.empty() && groups.contains(upperCase(each.group)));
    };
    std::vector<std::string> result;
    if (std::none_of(additions.begin(), additions.end(), isWanted)) {
        return result;
    }
    const std::vector<CardLine> lines = cardLines(card, false);
    // An addition belongs to the line of its own vCard property, else to the first line that is written for
    // the entry.
    using Place = std::pair<std::string_view, std::size_t>;
    std::map<Place, std::vector<std::size_t>> linesOf;
    for (std::size_t at = 0; at < lines.size(); ++at) {
        linesOf[{lines[at].property, lines[at].entry}].push_back(at);
    }
    std::vector<const Addition*> additionOf(lines.size());
    for (const Addition& each : additions) {
        const auto found = linesOf.find({each.property, each.entry});
        if (found == linesOf.end()) {
            continue;
        }
        const auto own = std::find_if(found->second.begin(), found->second.end(), [&](std::size_t at) {
            return upperCase(lines[at].name) == each.source;
        });
        const Addition*& slot = additionOf[own == found->second.end() ? found->second.front() : *own];
        if (!slot || !isWanted(*slot)) {
            slot = &each;
        }
    }
    // If one of several equal lines needs an addition, all of them get one, as they are matched by their
    // order.
    const auto textOf = [](const CardLine& line) {
        return std::pair<std::string_view, std::string_view>(line.name, matchedValue(line));
    };
    std::set<std::pair<std::string_view, std::string_view>> texts;
    for (std::size_t at = 0; at < lines.size(); ++at) {
        if (additionOf[at] && isWanted(*additionOf[at])) {
            texts.insert(textOf(lines[at]));
        }
    }
    for (std::size_t at = 0; at < lines.size(); ++at) {
        if (!texts.contains(textOf(lines[at]))) {
            continue;
        }
        std::string text(1, kAddition);
        if (const Addition* addition = additionOf[at]) {
            if (groups.contains(upperCase(addition->group))) {
                text += groupNames.renamed(addition->group) + '.';
            }
            text += lines[at].name + storedParams(addition->params, addition->asRead);
        } else {
            text += lines[at].name;
        }
        text += ':';
        text += matchedValue(lines[at]);
        result.push_back(std::move(text));
    }
    return result;
}

} // namespace addressbook::vcard

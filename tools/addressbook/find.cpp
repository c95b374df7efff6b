#include "tools/addressbook/find.h"

#include "frameworks/AddressBook/values/calendar.h"

#include <algorithm>
#include <iterator>

namespace addressbook::tool {
namespace {

constexpr std::size_t kFewestDigits = 3;

// Whether a property's values are text or have text in them.
bool holdsText(int type) {
    const auto base = static_cast<Type>(type & ~kMultiValue);
    return base == Type::string || base == Type::dictionary;
}

std::vector<std::string> textProperties(const Store& store, Kind kind) {
    std::vector<std::string> names;
    for (const std::string_view name : builtInNames(kind)) {
        if (holdsText(builtInType(kind, name)) && name != property::kUid &&
            name != property::kAlternateBirthdayComponents) {
            names.emplace_back(name);
        }
    }
    for (const PropertyDefinition& own : store.definitions()) {
        if (own.kind == kind && holdsText(own.type)) {
            names.push_back(own.name);
        }
    }
    return names;
}

std::string digitsOf(std::string_view text) {
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
                 [](char c) { return c >= '0' && c <= '9'; });
    return digits;
}

// Returns the digits of a word that may be a phone number or a part of one; empty for any other word.
std::string phoneDigits(std::string_view word) {
    std::string digits = digitsOf(word);
    const bool number = word.find_first_not_of("0123456789+-./() ") == std::string_view::npos;
    return number && digits.size() >= kFewestDigits ? digits : "";
}

bool hasPhone(const Store& store, RowId row, const std::string& digits) {
    const Value phones = store.value(row, property::kPhone);
    const auto* list = phones.as<MultiValue>();
    return list != nullptr &&
           std::any_of(list->entries.begin(), list->entries.end(), [&](const Entry& entry) {
               const auto* number = entry.value.as<std::string>();
               return number != nullptr && digitsOf(*number).find(digits) != std::string::npos;
           });
}

std::vector<RowId> findWord(const Store& store, Kind kind, const std::string& word) {
    Query::Compound anywhere{Query::Join::any, {}};
    for (const std::string& name : textProperties(store, kind)) {
        auto& condition = std::get<Condition>(anywhere.children.emplace_back().node);
        condition.kind = kind;
        condition.property = name;
        condition.value = word;
        condition.comparison = Comparison::containsSubStringCaseInsensitive;
    }
    std::vector<RowId> rows = store.search({anywhere}, currentTime());
    const std::string digits = phoneDigits(word);
    if (kind == Kind::person && !digits.empty()) {
        for (const RowId row : store.rows(kind)) {
            if (hasPhone(store, row, digits)) {
                rows.push_back(row);
            }
        }
        std::sort(rows.begin(), rows.end());
        rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    }
    return rows;
}

} // namespace

std::vector<RowId> findWords(const Store& store, const std::vector<std::string>& words) {
    const Store::ReadTransaction oneMoment(store);
    std::vector<RowId> found;
    for (const Kind kind : {Kind::person, Kind::group}) {
        std::vector<RowId> rows = store.rows(kind);
        for (const std::string& word : words) {
            const std::vector<RowId> holding = findWord(store, kind, word);
            std::vector<RowId> both;
            std::set_intersection(rows.begin(), rows.end(), holding.begin(), holding.end(),
                                  std::back_inserter(both));
            rows = std::move(both);
        }
        found.insert(found.end(), rows.begin(), rows.end());
    }
    return found;
}

} // namespace addressbook::tool

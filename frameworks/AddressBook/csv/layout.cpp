#include "frameworks/AddressBook/csv/layout.h"

#include "frameworks/AddressBook/csv/columns.h"
#include "frameworks/AddressBook/csv/labels.h"
#include "frameworks/AddressBook/values/calendar.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace addressbook::csv {
namespace {

namespace p = property;

// Properties that have a column even when nobody has a value.
constexpr std::array kAlways{p::kFirst,      p::kMiddle,   p::kLast,         p::kTitle,
                             p::kSuffix,     p::kNickname, p::kOrganization, p::kJobTitle,
                             p::kDepartment, p::kBirthday, p::kNote};

std::string dayText(const Value& value) {
    const auto day = dayOf(value);
    const auto monthDay = monthDayOf(value);
    if (!monthDay) {
        return {};
    }
    const auto parts = dayParts(value);
    const auto year = parts ? parts->year
                      : day ? std::optional<int>(static_cast<int>(yearOf(*day)))
                            : std::nullopt;
    std::array<char, 32> text{};
    if (year) {
        std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", *year, monthDay->month, monthDay->day);
    } else {
        std::snprintf(text.data(), text.size(), "--%02d-%02d", monthDay->month, monthDay->day);
    }
    return text.data();
}

std::string textOf(const Value& value) {
    if (const auto* text = value.as<std::string>()) {
        return *text;
    }
    if (const auto* number = value.as<std::int64_t>()) {
        return std::to_string(*number);
    }
    if (const auto* real = value.as<double>()) {
        std::array<char, 40> text{};
        std::snprintf(text.data(), text.size(), "%.17g", *real);
        return text.data();
    }
    return dayText(value);
}

bool isPlain(int type) {
    const auto base = static_cast<Type>(type & ~kMultiValue);
    return base == Type::string || base == Type::integer || base == Type::real || base == Type::date;
}

} // namespace

void Layout::measure(const std::map<std::string, Value>& values) {
    for (const auto& [property, value] : values) {
        if (const auto* list = value.as<MultiValue>()) {
            std::size_t& most = most_[property];
            most = std::max(most, list->entries.size());
        } else {
            used_.insert(property);
        }
    }
}

// Header and property of what has one value.
std::vector<std::pair<std::string, std::string>> Layout::singles() const {
    std::vector<std::pair<std::string, std::string>> columns;
    std::set<std::string_view> seen;
    for (const Single& row : singleProperties()) {
        const bool always = std::find(kAlways.begin(), kAlways.end(), row.property) != kAlways.end();
        if (seen.insert(row.property).second && (always || used_.contains(std::string(row.property)))) {
            columns.emplace_back(row.header, row.property);
        }
    }
    for (const PropertyDefinition& one : own_) {
        if (one.kind == Kind::person && isPlain(one.type) && used_.contains(one.name)) {
            columns.emplace_back(one.name, one.name);
        }
    }
    return columns;
}

std::vector<Layout::List> Layout::lists() const {
    std::vector<List> lists;
    for (const Numbered& row : numberedProperties()) {
        const std::string property(row.property);
        if (most_.contains(property)) {
            const int type = builtInType(Kind::person, property) & ~kMultiValue;
            lists.push_back({std::string(row.word), property, static_cast<Type>(type) == Type::dictionary});
        }
    }
    for (const PropertyDefinition& one : own_) {
        if (one.kind == Kind::person && isPlain(one.type) && most_.contains(one.name)) {
            lists.push_back({one.name, one.name, false});
        }
    }
    return lists;
}

// Header and key of what an entry has; an empty key: its value.
std::vector<std::pair<std::string, std::string>> Layout::fieldsOf(const List& list) const {
    std::vector<std::pair<std::string, std::string>> fields;
    if (!list.dictionary) {
        fields.emplace_back("Value", "");
    }
    for (const NumberedField& row : numberedFields()) {
        if (row.property == list.property) {
            fields.emplace_back(row.word, row.key);
        }
    }
    return fields;
}

std::vector<std::string> Layout::headers() const {
    std::vector<std::string> headers;
    for (const auto& [header, property] : singles()) {
        headers.push_back(header);
    }
    headers.emplace_back(kGroupsHeader);
    for (const List& list : lists()) {
        for (std::size_t number = 1; number <= most_.at(list.property); ++number) {
            const std::string start = list.word + ' ' + std::to_string(number) + " - ";
            headers.push_back(start + "Label");
            for (const auto& [header, key] : fieldsOf(list)) {
                headers.push_back(start + header);
            }
        }
    }
    headers.emplace_back(kIdentifierHeader);
    return headers;
}

std::vector<std::string> Layout::cells(const std::string& id, const std::map<std::string, Value>& values,
                                       const std::vector<std::string>& groups) const {
    const auto valueOf = [&](const std::string& property) {
        const auto found = values.find(property);
        return found == values.end() ? nullptr : &found->second;
    };
    std::vector<std::string> cells;
    for (const auto& [header, property] : singles()) {
        const Value* value = valueOf(property);
        cells.push_back(value == nullptr ? "" : textOf(*value));
    }
    std::string names;
    for (const std::string& name : groups) {
        names.append(names.empty() ? "" : kBetween).append(name);
    }
    // A single name with a semicolon would be read as two.
    cells.push_back(groups.size() == 1 && names.find(';') != std::string::npos ? names.append(kBetween)
                                                                               : names);
    for (const List& list : lists()) {
        const Value* value = valueOf(list.property);
        const auto* entries = value == nullptr ? nullptr : value->as<MultiValue>();
        const auto fields = fieldsOf(list);
        for (std::size_t at = 0; at < most_.at(list.property); ++at) {
            if (entries == nullptr || at >= entries->entries.size()) {
                cells.resize(cells.size() + 1 + fields.size());
                continue;
            }
            const Entry& entry = entries->entries[at];
            const bool primary = at > 0 && entry.identifier == entries->primary;
            cells.push_back((primary ? "* " : "") + wordFor(entry.label));
            for (const auto& [header, key] : fields) {
                const auto* dictionary = entry.value.as<Dictionary>();
                const auto found =
                    dictionary == nullptr ? Dictionary::const_iterator() : dictionary->find(key);
                cells.push_back(dictionary == nullptr        ? textOf(entry.value)
                                : found == dictionary->end() ? ""
                                                             : textOf(found->second));
            }
        }
    }
    cells.push_back(id);
    return cells;
}

} // namespace addressbook::csv

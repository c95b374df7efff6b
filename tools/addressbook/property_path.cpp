#include "tools/addressbook/property_path.h"

#include "frameworks/AddressBook/store/interned_words.h"
#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/dates.h"
#include "frameworks/AddressBook/vcard/vcard.h"
#include "tools/addressbook/fields.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>

namespace addressbook::tool {
namespace {

// A field of a dictionary property: the user's word and the key.
struct FieldName {
    std::string_view property, word, key;
};
constexpr std::array kFieldNames{
    FieldName{property::kAddress, "street", "Street"},
    FieldName{property::kAddress, "city", "City"},
    FieldName{property::kAddress, "state", "State"},
    FieldName{property::kAddress, "zip", "ZIP"},
    FieldName{property::kAddress, "country", "Country"},
    FieldName{property::kAddress, "countrycode", "CountryCode"},
    FieldName{property::kInstantMessage, "service", vcard::kInstantMessageService},
    FieldName{property::kInstantMessage, "username", vcard::kInstantMessageUsername},
    FieldName{property::kSocialProfile, "service", vcard::kSocialProfileService},
    FieldName{property::kSocialProfile, "username", vcard::kSocialProfileUsername},
    FieldName{property::kSocialProfile, "url", vcard::kSocialProfileUrl},
    FieldName{property::kSocialProfile, "identifier", vcard::kSocialProfileIdentifier},
};

std::vector<std::string> fieldWords(std::string_view property) {
    std::vector<std::string> words;
    for (const FieldName& row : kFieldNames) {
        if (row.property == property) {
            words.emplace_back(row.word);
        }
    }
    return words;
}

// Returns the type of a property, built-in or custom; 0 when there is none, or it cannot be set.
int settableType(const std::vector<PropertyDefinition>& definitions, Kind kind, const std::string& property) {
    if (property == property::kUid || property == property::kCreation ||
        property == property::kModification) {
        return 0;
    }
    if (const int type = builtInType(kind, property)) {
        return type;
    }
    for (const PropertyDefinition& own : definitions) {
        if (own.kind == kind && own.name == property) {
            return own.type;
        }
    }
    return 0;
}

[[noreturn]] void refuse(std::string_view name, const std::vector<Field>& known, Kind kind) {
    std::vector<std::string> names;
    names.reserve(known.size());
    for (const Field& field : known) {
        names.push_back(field.name);
    }
    std::string message = "no property to set is named \"" + std::string(name) + '"';
    const std::string wanted = fold(name);
    const auto nearest =
        std::min_element(names.begin(), names.end(), [&](const auto& left, const auto& right) {
            return distance(wanted, fold(left)) < distance(wanted, fold(right));
        });
    if (nearest != names.end() && distance(wanted, fold(*nearest)) <= 3) {
        message += "; did you mean " + *nearest + '?';
    } else {
        message += '.';
    }
    message += kind == Kind::person ? " A person has: " : " A group has: ";
    message += listed(names);
    if (kind == Kind::person) {
        message += "; with a label as phones/home, with a field as addresses/work/city";
    }
    throw std::invalid_argument(message);
}

template <typename Number>
bool reads(const std::string& text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

} // namespace

std::vector<Field> settableFields(const std::vector<PropertyDefinition>& definitions, Kind kind) {
    std::vector<Field> fields;
    if (kind == Kind::group) {
        fields.push_back({"name", std::string(property::kGroupName)});
        for (const PropertyDefinition& own : definitions) {
            if (own.kind == kind) {
                fields.push_back({own.name, own.name});
            }
        }
        return fields;
    }
    for (Field& field : allFields(definitions)) {
        if (!field.property.empty() && settableType(definitions, kind, field.property) != 0) {
            fields.push_back(std::move(field));
        }
    }
    return fields;
}

std::string listed(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : ", ") + word;
    }
    return text;
}

std::string labelNamed(std::string_view text) {
    const std::string wanted = fold(text);
    std::uint64_t code = 1;
    for (std::string_view word; !(word = wordOf(code)).empty(); ++code) {
        if (word.starts_with("_$!<") && (fold(labelText(word)) == wanted || word == text)) {
            return std::string(word);
        }
    }
    return std::string(text);
}

PropertyPath parsePath(std::string_view text, Kind kind, const std::vector<PropertyDefinition>& definitions) {
    const std::vector<Field> known = settableFields(definitions, kind);
    const std::size_t slash = std::min(text.find('/'), text.size());
    const std::string wanted = fold(text.substr(0, slash));
    // A list may also be named in the singular: phone for phones.
    const auto found = std::find_if(known.begin(), known.end(), [&](const Field& field) {
        const std::string name = fold(field.name);
        return name == wanted || fold(field.property) == wanted || name == wanted + "s" ||
               name == wanted + "es";
    });
    if (found == known.end()) {
        refuse(text.substr(0, slash), known, kind);
    }
    PropertyPath path{std::string(text), found->property, settableType(definitions, kind, found->property),
                      "", ""};
    if (slash == text.size()) {
        return path;
    }
    if (!path.isList()) {
        throw std::invalid_argument(found->name + " has one value and no labels; write " + found->name +
                                    "=VALUE");
    }
    std::string_view label = text.substr(slash + 1);
    if (path.entryType() == Type::dictionary) {
        const std::size_t last = label.rfind('/');
        const std::string word = last == std::string_view::npos ? "" : fold(label.substr(last + 1));
        for (const FieldName& row : kFieldNames) {
            if (row.property == path.property && !word.empty() &&
                (row.word == word || fold(row.key) == word)) {
                path.field = row.key;
                label = label.substr(0, last);
                break;
            }
        }
        if (last != std::string_view::npos && path.field.empty()) {
            throw std::invalid_argument(found->name + " has no field \"" + word +
                                        "\"; fields: " + listed(fieldWords(path.property)));
        }
    }
    if (label.empty()) {
        throw std::invalid_argument("a label is missing behind the slash of \"" + std::string(text) + '"');
    }
    path.label = labelNamed(label);
    return path;
}

Value valueOfType(Type type, const std::string& text) {
    switch (type) {
    case Type::string:
        return text;
    case Type::integer:
        if (std::int64_t number = 0; reads(text, number)) {
            return number;
        }
        throw std::invalid_argument("expected a whole number, not \"" + text + '"');
    case Type::real:
        if (double number = 0; reads(text, number)) {
            return number;
        }
        throw std::invalid_argument("expected a number, not \"" + text + '"');
    case Type::date:
        if (const auto day = vcard::parseDay(text, kNoYear)) {
            return *day;
        }
        throw std::invalid_argument("expected a date as 2026-01-31, or --01-31 without a year, not \"" +
                                    text + '"');
    default:
        throw std::invalid_argument("a value of this type cannot be written as text");
    }
}

} // namespace addressbook::tool

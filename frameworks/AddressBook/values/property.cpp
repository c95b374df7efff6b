#include "frameworks/AddressBook/values/property.h"

#include "frameworks/AddressBook/values/word_index.h"

#include <array>

namespace addressbook {
namespace {

constexpr int kString = static_cast<int>(Type::string);
constexpr int kInteger = static_cast<int>(Type::integer);
constexpr int kDate = static_cast<int>(Type::date);
constexpr int kData = static_cast<int>(Type::data);
constexpr int kArray = static_cast<int>(Type::array);
constexpr int kDateComponents = static_cast<int>(Type::dateComponents);
constexpr int kDictionary = static_cast<int>(Type::dictionary);
constexpr int kStrings = kString + kMultiValue;
constexpr int kDates = kDate + kMultiValue;
constexpr int kDictionaries = kDictionary + kMultiValue;

namespace p = property;

constexpr std::array kBuiltIn{
    BuiltInProperty{p::kUid, kString, Scope::both},
    BuiltInProperty{p::kCreation, kDate, Scope::both},
    BuiltInProperty{p::kModification, kDate, Scope::both},
    BuiltInProperty{p::kFirst, kString, Scope::person},
    BuiltInProperty{p::kLast, kString, Scope::person},
    BuiltInProperty{p::kFirstPhonetic, kString, Scope::person},
    BuiltInProperty{p::kLastPhonetic, kString, Scope::person},
    BuiltInProperty{p::kMiddle, kString, Scope::person},
    BuiltInProperty{p::kMiddlePhonetic, kString, Scope::person},
    BuiltInProperty{p::kTitle, kString, Scope::person},
    BuiltInProperty{p::kSuffix, kString, Scope::person},
    BuiltInProperty{p::kNickname, kString, Scope::person},
    BuiltInProperty{p::kMaidenName, kString, Scope::person},
    BuiltInProperty{p::kBirthday, kDate, Scope::person},
    BuiltInProperty{p::kOrganization, kString, Scope::person},
    BuiltInProperty{p::kOrganizationPhonetic, kString, Scope::person},
    BuiltInProperty{p::kJobTitle, kString, Scope::person},
    BuiltInProperty{p::kDepartment, kString, Scope::person},
    BuiltInProperty{p::kNote, kString, Scope::person},
    BuiltInProperty{p::kHomePage, kString, Scope::person},
    BuiltInProperty{p::kPersonFlags, kInteger, Scope::person},
    BuiltInProperty{p::kUrls, kStrings, Scope::person},
    BuiltInProperty{p::kCalendarUris, kStrings, Scope::person},
    BuiltInProperty{p::kEmail, kStrings, Scope::person},
    BuiltInProperty{p::kPhone, kStrings, Scope::person},
    BuiltInProperty{p::kRelatedNames, kStrings, Scope::person},
    BuiltInProperty{p::kAim, kStrings, Scope::person},
    BuiltInProperty{p::kJabber, kStrings, Scope::person},
    BuiltInProperty{p::kMsn, kStrings, Scope::person},
    BuiltInProperty{p::kYahoo, kStrings, Scope::person},
    BuiltInProperty{p::kIcq, kStrings, Scope::person},
    BuiltInProperty{p::kAddress, kDictionaries, Scope::person},
    BuiltInProperty{p::kOtherDates, kDates, Scope::person},
    BuiltInProperty{p::kSocialProfile, kDictionaries, Scope::person},
    BuiltInProperty{p::kInstantMessage, kDictionaries, Scope::person},
    BuiltInProperty{p::kGroupName, kString, Scope::group},
};

// Properties of people whose values the framework gives as date components, and where they are stored.
struct ComponentsProperty {
    std::string_view name;
    int type;
    std::string_view stored;
};
constexpr std::array kComponents{
    ComponentsProperty{p::kBirthdayComponents, kDateComponents, p::kBirthday},
    ComponentsProperty{p::kAlternateBirthdayComponents, kDateComponents, p::kAlternateBirthdayComponents},
    ComponentsProperty{p::kOtherDateComponents, kDateComponents + kMultiValue, p::kOtherDates},
};

// Properties that are never listed, with their types.
constexpr std::array kInternal{
    BuiltInProperty{p::kImage, kData, Scope::person},
    BuiltInProperty{p::kUnknownLines, kArray, Scope::both},
    BuiltInProperty{p::kDistribution, kDictionary, Scope::group},
};

// All names, in the order of the tables above.
constexpr auto kNames = [] {
    std::array<std::string_view, kBuiltIn.size() + kComponents.size() + kInternal.size()> names;
    auto next = names.begin();
    for (const auto& row : kBuiltIn) {
        *next++ = row.name;
    }
    for (const auto& row : kComponents) {
        *next++ = row.name;
    }
    for (const auto& row : kInternal) {
        *next++ = row.name;
    }
    return names;
}();
constexpr WordIndex kIndex(kNames);

constexpr bool namesDiffer() {
    for (std::size_t place = 0; place < kNames.size(); ++place) {
        if (kIndex.find(kNames[place]) != place + 1) {
            return false;
        }
    }
    return true;
}
static_assert(namesDiffer());

// Returns the row of a name in one of the tables; null when it is in another one, or in none.
const BuiltInProperty* builtIn(std::size_t place) {
    if (place < kBuiltIn.size()) {
        return &kBuiltIn[place];
    }
    const std::size_t behind = place - kBuiltIn.size() - kComponents.size();
    return behind < kInternal.size() ? &kInternal[behind] : nullptr;
}
const ComponentsProperty* components(std::size_t place) {
    const std::size_t behind = place - kBuiltIn.size();
    return behind < kComponents.size() ? &kComponents[behind] : nullptr;
}

// Returns the place of a name among all names, behind the last one when it is not there.
std::size_t placeOf(std::string_view name) {
    return kIndex.find(name) - 1;
}

bool has(Scope scope, Kind kind) {
    return scope == Scope::both || (scope == Scope::person) == (kind == Kind::person);
}

} // namespace

std::span<const BuiltInProperty> builtInProperties() {
    return kBuiltIn;
}

std::optional<std::string_view> storedForComponents(std::string_view name) {
    const ComponentsProperty* row = components(placeOf(name));
    return row != nullptr ? std::optional(row->stored) : std::nullopt;
}

std::vector<std::string_view> builtInNames(Kind kind) {
    std::vector<std::string_view> names;
    for (const auto& row : kBuiltIn) {
        if (has(row.scope, kind)) {
            names.push_back(row.name);
        }
    }
    if (kind == Kind::person) {
        for (const auto& row : kComponents) {
            names.push_back(row.name);
        }
    }
    return names;
}

int builtInType(Kind kind, std::string_view name) {
    const std::size_t place = placeOf(name);
    if (const BuiltInProperty* row = builtIn(place)) {
        return has(row->scope, kind) ? row->type : 0;
    }
    const ComponentsProperty* row = components(place);
    return row != nullptr && kind == Kind::person ? row->type : 0;
}

bool isInternal(std::string_view name) {
    return !name.empty() && name.front() == '.';
}

} // namespace addressbook

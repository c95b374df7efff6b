#include "frameworks/AddressBook/values/property.h"

#include <algorithm>
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

constexpr bool namesDiffer() {
    for (const auto& row : kComponents) {
        for (const auto& other : kBuiltIn) {
            if (row.name == other.name) {
                return false;
            }
        }
    }
    for (std::size_t i = 0; i < kBuiltIn.size(); ++i) {
        for (std::size_t j = i + 1; j < kBuiltIn.size(); ++j) {
            if (kBuiltIn[i].name == kBuiltIn[j].name) {
                return false;
            }
        }
    }
    return true;
}
static_assert(namesDiffer());

bool has(Scope scope, Kind kind) {
    return scope == Scope::both || (scope == Scope::person) == (kind == Kind::person);
}

} // namespace

std::span<const BuiltInProperty> builtInProperties() {
    return kBuiltIn;
}

std::optional<std::string_view> storedForComponents(std::string_view name) {
    for (const auto& row : kComponents) {
        if (row.name == name) {
            return row.stored;
        }
    }
    return std::nullopt;
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
    if (kind == Kind::person) {
        for (const auto& row : kComponents) {
            if (row.name == name) {
                return row.type;
            }
        }
    }
    const auto type = [&](const auto& table) {
        const auto* const row =
            std::find_if(table.begin(), table.end(), [&](const BuiltInProperty& candidate) {
                return candidate.name == name && has(candidate.scope, kind);
            });
        return row == table.end() ? 0 : row->type;
    };
    return isInternal(name) ? type(kInternal) : type(kBuiltIn);
}

bool isInternal(std::string_view name) {
    return !name.empty() && name.front() == '.';
}

} // namespace addressbook

#pragma once

// The built-in properties of people and groups: the one table from which the framework's constants, the store
// and the vCard reader take names and types.

#include "frameworks/AddressBook/values/value.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook {

// Which records have a property.
enum class Scope { both, person, group };

// One row of the built-in table.
struct BuiltInProperty {
    std::string_view name;
    int type; // Type, with kMultiValue where it is a list
    Scope scope;
};

// Returns every built-in property in the framework's order.
std::span<const BuiltInProperty> builtInProperties();

// Returns the property under which the values of a date components property are stored: kBirthday and
// kOtherDates, whose dates are given as components of their local day, or for the alternate birthday a
// dictionary, since components alone do not say by which calendar they count. None for any other property.
std::optional<std::string_view> storedForComponents(std::string_view name);

// Returns the names of all built-in properties of a kind, without those that users added.
std::vector<std::string_view> builtInNames(Kind kind);

// A property that users added to people or groups.
struct PropertyDefinition {
    Kind kind = Kind::person;
    std::string name;
    int type = 0;
    bool operator==(const PropertyDefinition&) const = default;
};

// Returns the type of a built-in, components or internal property, 0 when [kind] has no such property.
int builtInType(Kind kind, std::string_view name);

// Whether [name] is that of an internal property (a leading dot): only this framework knows it, and it is
// never listed or searched.
bool isInternal(std::string_view name);

// Names of the built-in properties, and of those that only this framework knows (a leading dot; never
// listed).
namespace property {
inline constexpr std::string_view kUid = "UID";
inline constexpr std::string_view kCreation = "Creation";
inline constexpr std::string_view kModification = "Modification";
inline constexpr std::string_view kFirst = "First";
inline constexpr std::string_view kLast = "Last";
inline constexpr std::string_view kFirstPhonetic = "FirstPhonetic";
inline constexpr std::string_view kLastPhonetic = "LastPhonetic";
inline constexpr std::string_view kMiddle = "Middle";
inline constexpr std::string_view kMiddlePhonetic = "MiddlePhonetic";
inline constexpr std::string_view kTitle = "Title";
inline constexpr std::string_view kSuffix = "Suffix";
inline constexpr std::string_view kNickname = "Nickname";
inline constexpr std::string_view kMaidenName = "MaidenName";
inline constexpr std::string_view kBirthday = "Birthday";
inline constexpr std::string_view kBirthdayComponents = "BirthdayComponents";
inline constexpr std::string_view kAlternateBirthdayComponents = "AlternateBirthdayComponents";
inline constexpr std::string_view kOrganization = "Organization";
inline constexpr std::string_view kOrganizationPhonetic = "OrganizationPhonetic";
inline constexpr std::string_view kJobTitle = "JobTitle";
inline constexpr std::string_view kDepartment = "ABDepartment";
inline constexpr std::string_view kNote = "Note";
inline constexpr std::string_view kHomePage = "HomePage";
inline constexpr std::string_view kPersonFlags = "ABPersonFlags";
inline constexpr std::string_view kUrls = "URLs";
inline constexpr std::string_view kCalendarUris = "calendarURIs";
inline constexpr std::string_view kEmail = "Email";
inline constexpr std::string_view kPhone = "Phone";
inline constexpr std::string_view kRelatedNames = "ABRelatedNames";
inline constexpr std::string_view kAim = "AIMInstant";
inline constexpr std::string_view kJabber = "JabberInstant";
inline constexpr std::string_view kMsn = "MSNInstant";
inline constexpr std::string_view kYahoo = "YahooInstant";
inline constexpr std::string_view kIcq = "ICQInstant";
inline constexpr std::string_view kAddress = "Address";
inline constexpr std::string_view kOtherDates = "ABDate";
inline constexpr std::string_view kOtherDateComponents = "ABDateComponents";
inline constexpr std::string_view kSocialProfile = "SocialProfile";
inline constexpr std::string_view kInstantMessage = "InstantMessage";
inline constexpr std::string_view kGroupName = "GroupName";
// Internal: the picture (data), vCard lines that no property holds (array of strings, whole content lines),
// and a group's distribution identifiers (dictionary: property -> dictionary: person's uid -> entry
// identifier).
inline constexpr std::string_view kImage = ".Image";
inline constexpr std::string_view kUnknownLines = ".VCardLines";
inline constexpr std::string_view kDistribution = ".Distribution";
} // namespace property

} // namespace addressbook

#include "frameworks/AddressBook/csv/columns.h"

#include "frameworks/AddressBook/csv/labels.h"

#include <algorithm>
#include <array>

namespace addressbook::csv {
namespace {

namespace p = property;

constexpr std::array kSingle{
    Single{"First Name", p::kFirst},
    Single{"Given Name", p::kFirst},
    Single{"First", p::kFirst},
    Single{"Forename", p::kFirst},
    Single{"Middle Name", p::kMiddle},
    Single{"Additional Name", p::kMiddle},
    Single{"Middle", p::kMiddle},
    Single{"Last Name", p::kLast},
    Single{"Family Name", p::kLast},
    Single{"Last", p::kLast},
    Single{"Surname", p::kLast},
    Single{"Phonetic First Name", p::kFirstPhonetic},
    Single{"Given Name Yomi", p::kFirstPhonetic},
    Single{"Given Yomi", p::kFirstPhonetic},
    Single{"Phonetic First", p::kFirstPhonetic},
    Single{"Phonetic Middle Name", p::kMiddlePhonetic},
    Single{"Additional Name Yomi", p::kMiddlePhonetic},
    Single{"Phonetic Middle", p::kMiddlePhonetic},
    Single{"Phonetic Last Name", p::kLastPhonetic},
    Single{"Family Name Yomi", p::kLastPhonetic},
    Single{"Surname Yomi", p::kLastPhonetic},
    Single{"Phonetic Last", p::kLastPhonetic},
    Single{"Name Prefix", p::kTitle},
    Single{"Title", p::kTitle},
    Single{"Prefix", p::kTitle},
    Single{"Name Suffix", p::kSuffix},
    Single{"Suffix", p::kSuffix},
    Single{"Nickname", p::kNickname},
    Single{"Maiden Name", p::kMaidenName},
    Single{"Organization Name", p::kOrganization},
    Single{"Organization 1 - Name", p::kOrganization},
    Single{"Organization", p::kOrganization},
    Single{"Organisation", p::kOrganization},
    Single{"Company", p::kOrganization},
    Single{"Company Name", p::kOrganization},
    Single{"Phonetic Organization Name", p::kOrganizationPhonetic},
    Single{"Organization 1 - Yomi Name", p::kOrganizationPhonetic},
    Single{"Company Yomi", p::kOrganizationPhonetic},
    Single{"Phonetic Company", p::kOrganizationPhonetic},
    Single{"Organization Title", p::kJobTitle},
    Single{"Organization 1 - Title", p::kJobTitle},
    Single{"Job Title", p::kJobTitle},
    Single{"Organization Department", p::kDepartment},
    Single{"Organization 1 - Department", p::kDepartment},
    Single{"Department", p::kDepartment},
    Single{"Birthday", p::kBirthday},
    Single{"Date of Birth", p::kBirthday},
    Single{"Notes", p::kNote},
    Single{"Note", p::kNote},
    Single{"Home Page", p::kHomePage},
    Single{"Flags", p::kPersonFlags},
};

constexpr std::array kNumbered{
    Numbered{"E-mail", p::kEmail},          Numbered{"Phone", p::kPhone},
    Numbered{"Address", p::kAddress},       Numbered{"Website", p::kUrls},
    Numbered{"Event", p::kOtherDates},      Numbered{"Relation", p::kRelatedNames},
    Numbered{"IM", p::kInstantMessage},     Numbered{"Profile", p::kSocialProfile},
    Numbered{"Calendar", p::kCalendarUris}, Numbered{"AIM", p::kAim},
    Numbered{"Jabber", p::kJabber},         Numbered{"MSN", p::kMsn},
    Numbered{"Yahoo", p::kYahoo},           Numbered{"ICQ", p::kIcq},
};

constexpr std::array kNumberedFields{
    NumberedField{p::kAddress, "Street", "Street"},
    NumberedField{p::kAddress, "City", "City"},
    NumberedField{p::kAddress, "Region", "State"},
    NumberedField{p::kAddress, "Postal Code", "ZIP"},
    NumberedField{p::kAddress, "Country", "Country"},
    NumberedField{p::kAddress, "Country Code", "CountryCode"},
    NumberedField{p::kInstantMessage, "Service", "InstantMessageService"},
    NumberedField{p::kInstantMessage, "Value", "InstantMessageUsername"},
    NumberedField{p::kSocialProfile, "Service", "serviceName"},
    NumberedField{p::kSocialProfile, "Username", "username"},
    NumberedField{p::kSocialProfile, "URL", "url"},
    NumberedField{p::kSocialProfile, "Identifier", "userIdentifier"},
};

// The parts of an entry in headers that name the label: "Home Street", "Business Postal Code", "E-mail 2 Address".
struct Part {
    std::string_view word, property, field;
};
constexpr std::array kParts{
    Part{"phone", p::kPhone, ""},
    Part{"phonenumber", p::kPhone, ""},
    Part{"telephone", p::kPhone, ""},
    Part{"email", p::kEmail, ""},
    Part{"emailaddress", p::kEmail, ""},
    Part{"webpage", p::kUrls, ""},
    Part{"website", p::kUrls, ""},
    Part{"url", p::kUrls, ""},
    Part{"imaddress", p::kInstantMessage, "InstantMessageUsername"},
    Part{"street", p::kAddress, "Street"},
    Part{"streetaddress", p::kAddress, "Street"},
    Part{"addressstreet", p::kAddress, "Street"},
    Part{"addresspobox", p::kAddress, "Street"},
    Part{"city", p::kAddress, "City"},
    Part{"addresscity", p::kAddress, "City"},
    Part{"state", p::kAddress, "State"},
    Part{"addressstate", p::kAddress, "State"},
    Part{"postalcode", p::kAddress, "ZIP"},
    Part{"addresspostalcode", p::kAddress, "ZIP"},
    Part{"zip", p::kAddress, "ZIP"},
    Part{"zipcode", p::kAddress, "ZIP"},
    Part{"country", p::kAddress, "Country"},
    Part{"countryregion", p::kAddress, "Country"},
    Part{"addresscountry", p::kAddress, "Country"},
    Part{"address", p::kAddress, "Street"},
};
constexpr std::array<std::string_view, 12> kLabels{"home",        "personal", "work",    "business",
                                                   "other",       "mobile",   "cell",    "main",
                                                   "companymain", "car",      "primary", "radio"};

// Headers that say all by themselves; [label] as a word.
struct Whole {
    std::string_view word, property, label;
};
constexpr std::array kWhole{
    Whole{"mobile", p::kPhone, "Mobile"},
    Whole{"mobilenumber", p::kPhone, "Mobile"},
    Whole{"cell", p::kPhone, "Mobile"},
    Whole{"pager", p::kPhone, "Pager"},
    Whole{"callback", p::kPhone, "Callback"},
    Whole{"isdn", p::kPhone, "ISDN"},
    Whole{"telex", p::kPhone, "Telex"},
    Whole{"ttytddphone", p::kPhone, "TTY/TDD"},
    Whole{"assistantsphone", p::kPhone, "Assistant"},
    Whole{"fax", p::kPhone, "Fax"},
    Whole{"homefax", p::kPhone, "Home Fax"},
    Whole{"workfax", p::kPhone, "Work Fax"},
    Whole{"businessfax", p::kPhone, "Work Fax"},
    Whole{"otherfax", p::kPhone, "Other Fax"},
    Whole{"anniversary", p::kOtherDates, "Anniversary"},
    Whole{"spouse", p::kRelatedNames, "Spouse"},
    Whole{"children", p::kRelatedNames, "Child"},
    Whole{"assistantsname", p::kRelatedNames, "Assistant"},
    Whole{"managersname", p::kRelatedNames, "Manager"},
};

constexpr std::array<std::string_view, 4> kGroupWords{"labels", "groups", "categories", "groupmembership"};
// Columns of those that say nothing besides others.
constexpr std::array<std::string_view, 8> kSuperfluousWords{
    "organization1type", "organization2type", "emailtype",         "email2type",
    "email3type",        "emaildisplayname",  "email2displayname", "email3displayname"};
constexpr std::array<std::string_view, 2> kIdentifierWords{"id", "uid"};
constexpr std::array<std::string_view, 5> kFullNameWords{"name", "fullname", "displayname", "fileas",
                                                         "contactname"};

template <typename Words>
bool has(const Words& words, std::string_view word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

// Takes the only number out of a squeezed header; 0 when there is none. [behind]: what stood behind it.
std::size_t takeNumber(std::string& word, std::string& behind) {
    const std::size_t start = word.find_first_of("0123456789");
    if (start == std::string::npos) {
        return 0;
    }
    const std::size_t end = std::min(word.find_first_not_of("0123456789", start), word.size());
    if (end - start > 4) {
        return 0;
    }
    const std::size_t number = std::stoul(word.substr(start, end - start));
    behind = word.substr(end);
    word.erase(start, end - start);
    return number;
}

// "Phone 1 - Value", "Address 2 - City", "E-mail 1 - Type".
std::optional<Column> numbered(std::string_view header, std::span<const PropertyDefinition> own) {
    const std::size_t dash = header.rfind(" - ");
    if (dash == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view left = header.substr(0, dash);
    const std::size_t space = left.rfind(' ');
    if (space == std::string_view::npos) {
        return std::nullopt;
    }
    std::string digits(left.substr(space + 1)), behind;
    Column column;
    column.entry = takeNumber(digits, behind);
    if (column.entry == 0 || !digits.empty()) {
        return std::nullopt;
    }
    const std::string_view name = left.substr(0, space);
    const auto* known = std::find_if(kNumbered.begin(), kNumbered.end(), [&](const Numbered& row) {
        return squeezed(row.word) == squeezed(name);
    });
    const auto mine = std::find_if(own.begin(), own.end(), [&](const PropertyDefinition& one) {
        return one.kind == Kind::person && one.name == name && (one.type & kMultiValue) != 0;
    });
    if (known == kNumbered.end() && mine == own.end()) {
        return std::nullopt;
    }
    column.property = known != kNumbered.end() ? std::string(known->property) : mine->name;
    const std::string what = squeezed(header.substr(dash + 3));
    if (what == "type" || what == "label") {
        column.role = Role::label;
        return column;
    }
    column.role = Role::value;
    for (const NumberedField& row : kNumberedFields) {
        if (row.property == column.property && squeezed(row.word) == what) {
            column.field = row.key;
            return column;
        }
    }
    if (column.property == p::kAddress) {
        constexpr std::array<std::string_view, 3> kStreet{"pobox", "extendedaddress", "formatted"};
        const auto* part = std::find(kStreet.begin(), kStreet.end(), what);
        if (part == kStreet.end()) {
            return std::nullopt;
        }
        column.field = "Street";
        column.part = static_cast<std::size_t>(part - kStreet.begin()) + 1;
        column.fallback = what == "formatted";
        return column;
    }
    return what == "value" ? std::optional(column) : std::nullopt;
}

// "Home Phone 2", "Business Street", "E-mail 2 Address", "Phone (home)".
std::optional<Column> labelled(std::string_view header) {
    std::string word = squeezed(header), behind;
    const std::size_t number = takeNumber(word, behind);
    Column column;
    column.role = Role::value;
    column.entry = number;
    for (const Whole& row : kWhole) {
        if (row.word == word) {
            column.property = row.property;
            column.label = labelFrom(row.label);
            return column;
        }
    }
    for (const Part& row : kParts) {
        const std::size_t at = word.find(row.word);
        if (at == std::string::npos || (at != 0 && at + row.word.size() != word.size())) {
            continue;
        }
        const std::string rest = at == 0 ? word.substr(row.word.size()) : word.substr(0, at);
        if (!rest.empty() && !has(kLabels, rest)) {
            continue;
        }
        column.property = row.property;
        column.field = row.field;
        std::string plain(rest);
        if (!plain.empty()) {
            plain.front() = static_cast<char>(plain.front() - 'a' + 'A');
        }
        column.label = labelFrom(plain);
        // A number behind "Street" counts its lines, not addresses.
        if (row.field == "Street" && number > 0 && behind.empty()) {
            column.part = number;
            column.entry = 0;
        } else if (row.word == "addresspobox") {
            column.part = 100; // behind all lines
        }
        return column;
    }
    return std::nullopt;
}

} // namespace

std::span<const Numbered> numberedProperties() {
    return kNumbered;
}

std::span<const NumberedField> numberedFields() {
    return kNumberedFields;
}

std::span<const Single> singleProperties() {
    return kSingle;
}

std::optional<Column> columnNamed(std::string_view header, std::span<const PropertyDefinition> own) {
    while (header.starts_with(' ')) {
        header.remove_prefix(1);
    }
    while (header.ends_with(' ')) {
        header.remove_suffix(1);
    }
    Column column;
    column.role = Role::value;
    for (const PropertyDefinition& one : own) {
        if (one.kind == Kind::person && one.name == header && (one.type & kMultiValue) == 0) {
            column.property = one.name;
            return column;
        }
    }
    const std::string word = squeezed(header);
    for (const Single& row : kSingle) {
        if (squeezed(row.header) == word) {
            column.property = row.property;
            return column;
        }
    }
    const auto plain = [&](Role role) {
        column.role = role;
        return column;
    };
    // Before the words: Google's "E-mail 2 - Type" is a label, Outlook's "E-mail 2 Type" a kind of mail system.
    if (auto found = numbered(header, own)) {
        return found;
    }
    if (has(kSuperfluousWords, word)) {
        return plain(Role::ignored);
    }
    if (has(kGroupWords, word)) {
        return plain(Role::groups);
    }
    if (has(kIdentifierWords, word)) {
        return plain(Role::identifier);
    }
    if (has(kFullNameWords, word)) {
        return plain(Role::fullName);
    }
    return labelled(header);
}

} // namespace addressbook::csv

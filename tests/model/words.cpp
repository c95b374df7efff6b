#include "tests/model/words.h"

#include <algorithm>
#include <array>
#include <set>
#include <sstream>
#include <utility>

namespace model {
namespace {

using Pair = std::pair<const char*, const char*>;

constexpr Pair kNames[] = {
    {"id", "UID"},
    {"creationdate", "Creation"},
    {"modifieddate", "Modification"},
    {"name", "GroupName"},
    {"firstname", "First"},
    {"lastname", "Last"},
    {"phoneticfirst", "FirstPhonetic"},
    {"phoneticlast", "LastPhonetic"},
    {"nickname", "Nickname"},
    {"maidenname", "MaidenName"},
    {"birthday", "Birthday"},
    {"companyname", "Organization"},
    {"jobtitle", "JobTitle"},
    {"homepage", "URLs"},
    {"webpages", "URLs"},
    {"calendars", "calendarURIs"},
    {"e-mail", "Email"},
    {"address", "Address"},
    {"dates", "ABDate"},
    {"relatednames", "ABRelatedNames"},
    {"department", "ABDepartment"},
    {"personflags", "ABPersonFlags"},
    {"phone", "Phone"},
    {"phones", "Phone"},
    {"note", "Note"},
    {"middlename", "Middle"},
    {"phoneticmiddle", "MiddlePhonetic"},
    {"nameprefix", "Title"},
    {"namesuffix", "Suffix"},
    {"imaol", "AIMInstant"},
    {"imicq", "ICQInstant"},
    {"imjabber", "JabberInstant"},
    {"immsn", "MSNInstant"},
    {"imyahoo", "YahooInstant"},
};

// Words and labels in the order in which reading looks at them.
constexpr Pair kLabels[] = {
    {"home", "_$!<Home>!$_"},
    {"work", "_$!<Work>!$_"},
    {"other", "_$!<Other>!$_"},
    {"home page", "_$!<HomePage>!$_"},
    {"work email", "_$!<Work>!$_"},
    {"home email", "_$!<Home>!$_"},
    {"home address", "_$!<Home>!$_"},
    {"work address", "_$!<Work>!$_"},
    {"anniversary", "_$!<Anniversary>!$_"},
    {"father", "_$!<Father>!$_"},
    {"mother", "_$!<Mother>!$_"},
    {"parent", "_$!<Parent>!$_"},
    {"brother", "_$!<Brother>!$_"},
    {"sister", "_$!<Sister>!$_"},
    {"child", "_$!<Child>!$_"},
    {"friend", "_$!<Friend>!$_"},
    {"spouse", "_$!<Spouse>!$_"},
    {"partner", "_$!<Partner>!$_"},
    {"assistant", "_$!<Assistant>!$_"},
    {"manager", "_$!<Manager>!$_"},
    {"work phone", "_$!<Work>!$_"},
    {"home phone", "_$!<Home>!$_"},
    {"mobile phone", "_$!<Mobile>!$_"},
    {"main phone", "_$!<Main>!$_"},
    {"home fax", "_$!<HomeFAX>!$_"},
    {"work fax", "_$!<WorkFAX>!$_"},
    {"pager", "_$!<Pager>!$_"},
    {"work aim", "_$!<Work>!$_"},
    {"home aim", "_$!<Home>!$_"},
    {"work jabber", "_$!<Work>!$_"},
    {"home jabber", "_$!<Home>!$_"},
    {"work msn", "_$!<Work>!$_"},
    {"home msn", "_$!<Home>!$_"},
    {"work yahoo", "_$!<Work>!$_"},
    {"home yahoo", "_$!<Home>!$_"},
    {"work icq", "_$!<Work>!$_"},
    {"home icq", "_$!<Home>!$_"},
    {"assistant phone ex", "_$!EX-AssistantPhone>!$_"},
    {"work fax ex", "_$!<EX-BusinessFax>!$_"},
    {"alt. work phone ex", "_$!<EX-BusinessPhone2>!$_"},
    {"home ex", "_$!<EX-HomePhone>!$_"},
    {"mobile ex", "_$!<EX-MobilePhone>!$_"},
    {"other ex", "_$!<EX-OtherTelephone>!$_"},
    {"tdd/tty ex", "_$!<EX-TtyTddPhone>!$_"},
    {"messaging 1 ex", "_$!<EX-ImAddress1>!$_"},
    {"messaginb 3 ex", "_$!<EX-ImAddress3>!$_"},
    {"work ex", "_$!<EX-Business>!$_"},
    {"home ex", "_$!<EX-Home>!$_"},
    {"other ex", "_$!<EX-Other>!$_"},
    {"work home page ex", "_$!<EX-BusinessHomePage>!$_"},
};

constexpr Pair kNewLabels[] = {
    {"home", "_$!<Home>!$_"},           {"work", "_$!<Work>!$_"},
    {"other", "_$!<Other>!$_"},         {"home fax", "_$!<HomeFAX>!$_"},
    {"work fax", "_$!<WorkFAX>!$_"},    {"main", "_$!<Main>!$_"},
    {"mobile", "_$!<Mobile>!$_"},       {"pager", "_$!<Pager>!$_"},
    {"home page", "_$!<HomePage>!$_"},  {"anniversary", "_$!<Anniversary>!$_"},
    {"mother", "_$!<Mother>!$_"},       {"father", "_$!<Father>!$_"},
    {"parent", "_$!<Parent>!$_"},       {"sister", "_$!<Sister>!$_"},
    {"brother", "_$!<Brother>!$_"},     {"child", "_$!<Child>!$_"},
    {"friend", "_$!<Friend>!$_"},       {"spouse", "_$!<Spouse>!$_"},
    {"assistant", "_$!<Assistant>!$_"}, {"manager", "_$!<Manager>!$_"},
};

constexpr const char* kComparisons[] = {
    "Equal",
    "NotEqual",
    "LessThan",
    "LessThanOrEqual",
    "GreaterThan",
    "GreaterThanOrEqual",
    "EqualCaseInsensitive",
    "ContainsSubString",
    "ContainsSubStringCaseInsensitive",
    "PrefixMatch",
    "PrefixMatchCaseInsensitive",
    "BitsInBitFieldMatch",
    "DoesNotContainSubString",
    "DoesNotContainSubStringCaseInsensitive",
    "NotEqualCaseInsensitive",
    "SuffixMatch",
    "SuffixMatchCaseInsensitive",
    "WithinIntervalAroundToday",
    "WithinIntervalAroundTodayYearless",
    "NotWithinIntervalAroundToday",
    "NotWithinIntervalAroundTodayYearless",
    "WithinIntervalFromToday",
    "WithinIntervalFromTodayYearless",
    "NotWithinIntervalFromToday",
    "NotWithinIntervalFromTodayYearless",
};

constexpr const char* kCountries =
    "ad ae ag al am ao ar at au az ba bb bd be bf bg bh bi bj bm bn bo br bs bt bw by bz ca cd cf cg ch ci "
    "cl cm cn co cr cu cv cy cz de dk dm do dz ec ee eg er es et fi fj fk fo fr ga gb gd ge gl gm gn gq gr "
    "gs gt gw gy hk hn hr ht hu id ie il im in iq ir is it jm jo jp ke kg kh ki km kp kr kw ky kz la lb lc "
    "li lk lr ls lt lu lv ly ma mc md me mg mk ml mm mn mo mr mt mu mv mw mx my mz na nc ne ng ni nl no np "
    "nr nz om pa pe pf pg ph pk pl pt py qa ro rs ru rw sa sb sc sd se sg sh si sk sl sn so sr st sv sy sz "
    "td tg th tj tl tm tn to tr tt tv tw tz ua ug us uy uz va vc ve vn vu ws ye yu za zm zw";

} // namespace

int builtInType(bool ofGroups, const std::string& property) {
    if (property == "UID") {
        return 1;
    }
    if (property == "Creation" || property == "Modification") {
        return 4;
    }
    if (ofGroups) {
        return property == "GroupName" ? 1 : 0;
    }
    static const std::set<std::string> kTexts{"First",    "Last",           "FirstPhonetic", "LastPhonetic",
                                              "Middle",   "MiddlePhonetic", "Title",         "Suffix",
                                              "Nickname", "MaidenName",     "Organization",  "JobTitle",
                                              "Note",     "ABDepartment",   "HomePage"};
    static const std::set<std::string> kLists{"URLs",           "calendarURIs", "Email",         "Phone",
                                              "ABRelatedNames", "AIMInstant",   "JabberInstant", "MSNInstant",
                                              "YahooInstant",   "ICQInstant"};
    if (kTexts.contains(property)) {
        return 1;
    }
    if (kLists.contains(property)) {
        return 0x101;
    }
    if (property == "Birthday") {
        return 4;
    }
    if (property == "ABPersonFlags") {
        return 2;
    }
    if (property == "ABDate") {
        return 0x104;
    }
    return property == "Address" || property == "SocialProfile" || property == "InstantMessage" ? 0x106 : 0;
}

Text propertyNamed(const Text& name) {
    if (!name) {
        return "UID";
    }
    std::string normal = lower(*name);
    std::erase(normal, ' ');
    for (const auto& [key, property] : kNames) {
        if (normal == key || *name == property) {
            return property;
        }
    }
    return std::nullopt;
}

Text labelForWord(const Text& word) {
    for (const auto& [known, label] : kLabels) {
        if (word && lower(*word) == known) {
            return label;
        }
    }
    return std::nullopt;
}

Text wordForLabel(const std::string& label) {
    for (const auto& [word, stored] : kLabels) {
        if (label == stored) {
            return word;
        }
    }
    return std::nullopt;
}

Text labelForNewEntry(const Text& word) {
    for (const auto& [known, label] : kNewLabels) {
        if (word && lower(*word) == known) {
            return label;
        }
    }
    return word;
}

Text keyForReading(const Text& word) {
    // Everything that begins with "Country" is the country: "Country Code" too.
    constexpr Pair kRows[] = {{"Street", "Street"}, {"City", "City"},       {"State", "State"},
                              {"Zip", "ZIP"},       {"Country", "Country"}, {"Country Code", "CountryCode"}};
    for (const auto& [beginning, key] : kRows) {
        if (word && (word->starts_with(beginning) || lower(*word) == lower(key))) {
            return key;
        }
    }
    return std::nullopt;
}

Text keyForWriting(const std::string& word) {
    constexpr const char* kKeys[] = {"Street", "City", "State", "ZIP", "Country", "CountryCode"};
    for (const char* key : kKeys) {
        if (lower(word) == lower(key)) {
            return key;
        }
    }
    return std::nullopt;
}

bool isCountry(const std::string& code) {
    static const std::set<std::string> codes = [] {
        std::set<std::string> all;
        std::istringstream in(kCountries);
        for (std::string one; in >> one;) {
            all.insert(one);
        }
        return all;
    }();
    return codes.contains(code);
}

std::span<const char* const> comparisonNames() {
    return kComparisons;
}

int comparisonNamed(const Text& name) {
    const auto* const found = std::find(std::begin(kComparisons), std::end(kComparisons), name.value_or(""));
    return found == std::end(kComparisons) ? 0 : static_cast<int>(found - std::begin(kComparisons));
}

} // namespace model

#include "frameworks/AddressBook/vcard/rules.h"

#include <algorithm>
#include <array>
#include <unordered_map>

namespace addressbook::vcard {

namespace {

using enum Shape;

constexpr std::string_view kAnniversaryLabel = "_$!<Anniversary>!$_";
constexpr std::string_view kAssistantLabel = "_$!<Assistant>!$_";
constexpr std::string_view kManagerLabel = "_$!<Manager>!$_";
constexpr std::string_view kSpouseLabel = "_$!<Spouse>!$_";

constexpr std::array kRules{
    Rule{"N", name, property::kLast, ""},
    Rule{"FN", fullName, "", ""},
    Rule{"NICKNAME", text, property::kNickname, ""},
    Rule{"X-MAIDENNAME", text, property::kMaidenName, ""},
    Rule{"X-PHONETIC-FIRST-NAME", text, property::kFirstPhonetic, ""},
    Rule{"X-PHONETIC-MIDDLE-NAME", text, property::kMiddlePhonetic, ""},
    Rule{"X-PHONETIC-LAST-NAME", text, property::kLastPhonetic, ""},
    Rule{"X-PHONETIC-ORG", text, property::kOrganizationPhonetic, ""},
    Rule{"SOUND", phoneticName, property::kLastPhonetic, "", Use::readOnly},
    Rule{"ORG", organization, property::kOrganization, ""},
    Rule{"TITLE", text, property::kJobTitle, ""},
    Rule{"EMAIL", links, property::kEmail, kOtherLabel},
    Rule{"TEL", telephones, property::kPhone, kOtherLabel},
    Rule{"ADR", addresses, property::kAddress, kOtherLabel},
    Rule{"NOTE", text, property::kNote, ""},
    Rule{"URL", uris, property::kUrls, kHomePageLabel},
    Rule{"CALURI", uris, property::kCalendarUris, kOtherLabel},
    Rule{"BDAY", day, property::kBirthday, ""},
    Rule{"X-AIM", texts, property::kAim, kOtherLabel},
    Rule{"X-JABBER", texts, property::kJabber, kOtherLabel},
    Rule{"X-MSN", texts, property::kMsn, kOtherLabel},
    Rule{"X-YAHOO", texts, property::kYahoo, kOtherLabel},
    Rule{"X-YAHOO-ID", texts, property::kYahoo, kOtherLabel, Use::readOnly},
    Rule{"X-ICQ", texts, property::kIcq, kOtherLabel},
    Rule{"IMPP", messaging, property::kInstantMessage, kOtherLabel},
    Rule{"X-SKYPE", messagingNames, property::kInstantMessage, "Skype", Use::beside},
    Rule{"X-SKYPE-USERNAME", messagingNames, property::kInstantMessage, "Skype", Use::readOnly},
    Rule{"X-GTALK", messagingNames, property::kInstantMessage, "GoogleTalk", Use::readOnly},
    Rule{"X-GOOGLE-TALK", messagingNames, property::kInstantMessage, "GoogleTalk", Use::beside},
    Rule{"X-QQ", messagingNames, property::kInstantMessage, "QQ", Use::beside},
    Rule{"X-GADUGADU", messagingNames, property::kInstantMessage, "GaduGadu", Use::beside},
    Rule{"X-SOCIALPROFILE", profiles, property::kSocialProfile, kOtherLabel},
    Rule{"X-ABDATE", days, property::kOtherDates, kOtherLabel},
    Rule{"ANNIVERSARY", days, property::kOtherDates, kAnniversaryLabel, Use::readOnly},
    Rule{"X-ANNIVERSARY", days, property::kOtherDates, kAnniversaryLabel, Use::beside},
    Rule{"X-EVOLUTION-ANNIVERSARY", days, property::kOtherDates, kAnniversaryLabel, Use::beside},
    Rule{"X-MS-ANNIVERSARY", days, property::kOtherDates, kAnniversaryLabel, Use::readOnly},
    Rule{"X-ABRELATEDNAMES", texts, property::kRelatedNames, kOtherLabel},
    Rule{"RELATED", relations, property::kRelatedNames, kOtherLabel, Use::readOnly},
    Rule{"X-SPOUSE", texts, property::kRelatedNames, kSpouseLabel, Use::readOnly},
    Rule{"X-MANAGER", texts, property::kRelatedNames, kManagerLabel, Use::readOnly},
    Rule{"X-ASSISTANT", texts, property::kRelatedNames, kAssistantLabel, Use::readOnly},
    Rule{"X-EVOLUTION-SPOUSE", texts, property::kRelatedNames, kSpouseLabel, Use::beside},
    Rule{"X-EVOLUTION-MANAGER", texts, property::kRelatedNames, kManagerLabel, Use::beside},
    Rule{"X-EVOLUTION-ASSISTANT", texts, property::kRelatedNames, kAssistantLabel, Use::beside},
    Rule{"X-MS-SPOUSE", texts, property::kRelatedNames, kSpouseLabel, Use::readOnly},
    Rule{"X-MS-MANAGER", texts, property::kRelatedNames, kManagerLabel, Use::readOnly},
    Rule{"X-MS-ASSISTANT", texts, property::kRelatedNames, kAssistantLabel, Use::readOnly},
    Rule{"X-ABSHOWAS", company, property::kPersonFlags, "", Use::written, "X-ABShowAs"},
    Rule{"X-ABORDER", nameOrder, property::kPersonFlags, "", Use::written, "X-ABOrder"},
    Rule{"PHOTO", picture, property::kImage, ""},
    Rule{"UID", uid, "", "", Use::readOnly},
    Rule{"X-ABUID", addressBookUid, "", "", Use::readOnly},
    Rule{"KIND", kind, "", "", Use::readOnly},
    Rule{"X-ADDRESSBOOKSERVER-KIND", kind, "", "", Use::readOnly},
    Rule{"MEMBER", member, "", "", Use::readOnly},
    Rule{"X-ADDRESSBOOKSERVER-MEMBER", member, "", "", Use::readOnly},
    Rule{"CATEGORIES", categories, "", "", Use::readOnly},
    Rule{"X-ABLABEL", label, "", "", Use::readOnly},
    Rule{"X-ABADR", country, "", "", Use::readOnly},
    Rule{"VERSION", derived, "", "", Use::readOnly},
    Rule{"PROFILE", derived, "", "", Use::readOnly},
    Rule{"PRODID", derived, "", "", Use::readOnly},
    Rule{"REV", derived, "", "", Use::readOnly},
};

constexpr std::array kServices{
    MessagingService{"AIM", "aim", property::kAim},   MessagingService{"Jabber", "xmpp", property::kJabber},
    MessagingService{"MSN", "msnim", property::kMsn}, MessagingService{"Yahoo", "ymsgr", property::kYahoo},
    MessagingService{"ICQ", "icq", property::kIcq},   MessagingService{"Skype", "skype", ""},
    MessagingService{"GoogleTalk", "gtalk", ""},      MessagingService{"QQ", "qq", ""},
    MessagingService{"GaduGadu", "gg", ""},           MessagingService{"Facebook", "fb", ""},
};

constexpr bool namesAreUnique() {
    for (std::size_t at = 0; at < kRules.size(); ++at) {
        for (std::size_t other = at + 1; other < kRules.size(); ++other) {
            if (kRules[at].name == kRules[other].name) {
                return false;
            }
        }
    }
    return true;
}
static_assert(namesAreUnique());

} // namespace

std::string_view defaultLabel(const Rule& rule) {
    return rule.shape == messagingNames ? kOtherLabel : rule.label;
}

Entries entriesOf(const Rule& rule) {
    return rule.shape == telephones ? Entries::telephones
           : rule.shape == links    ? Entries::emails
                                    : Entries::any;
}

std::vector<std::string_view> writtenTypes(const Rule& rule, std::string_view label) {
    const bool labelOnly =
        rule.shape == days || rule.shape == profiles || rule.property == property::kRelatedNames;
    if (labelOnly || label == defaultLabel(rule)) {
        return {};
    }
    return typesFor(label, entriesOf(rule));
}

std::span<const Rule> rules() {
    return kRules;
}

const Rule* ruleFor(std::string_view upperName) {
    static const auto kByName = [] {
        std::unordered_map<std::string_view, const Rule*> byName;
        for (const Rule& rule : kRules) {
            byName.emplace(rule.name, &rule);
        }
        return byName;
    }();
    const auto found = kByName.find(upperName);
    return found == kByName.end() ? nullptr : found->second;
}

std::span<const MessagingService> messagingServices() {
    return kServices;
}

} // namespace addressbook::vcard

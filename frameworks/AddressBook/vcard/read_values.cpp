// The properties of a card that have one value, and its ids.

#include "frameworks/AddressBook/vcard/card_reader.h"

#include "frameworks/AddressBook/values/display_name.h"
#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/line_values.h"

#include <algorithm>

namespace addressbook::vcard {

// Whether a component has several parts. Where one of these is empty, it is a text whose comma the program did
// not escape.
bool CardReader::hasLists(const ContentLine& line) const {
    if (version_ == Version::v21 || !hasUnescaped(line.value, ',')) {
        return false;
    }
    for (const std::string_view component : splitEscaped(line.value, ';')) {
        const auto parts = splitEscaped(component, ',');
        const auto isEmpty = [](std::string_view part) { return trim(part).empty(); };
        if (parts.size() > 1 && std::any_of(parts.begin(), parts.end(), isEmpty)) {
            return false;
        }
    }
    return true;
}

// Returns the value as read when its components are lists, which become one text each; else empty text.
std::string CardReader::listsOf(const ContentLine& line) const {
    return hasLists(line) ? renderValue(line) : std::string();
}

// The value as it is, but for commas that are no separators and a backslash at its end, which would escape what is put
// behind it; with at least [count] components.
std::string CardReader::componentsOf(const ContentLine& line, std::size_t count) const {
    const std::vector<std::string> parts = line.components(kMaxParts);
    std::string value;
    if (version_ != Version::v21 && (!hasUnescaped(line.value, ',') || hasLists(line))) {
        value = renderValue(line);
        value += endsWithBackslash(value) ? "\\" : "";
    } else {
        for (const std::string& part : parts) {
            value += (&part == parts.data() ? "" : ";") + escape(part);
        }
    }
    return value.append(count > parts.size() ? count - parts.size() : 0, ';');
}

bool CardReader::readName(ContentLine& line) {
    if (!names_.empty()) {
        return false;
    }
    std::vector<std::string> parts = line.components(6);
    const bool more = parts.size() > 5 && !parts[5].empty();
    parts.resize(5);
    constexpr std::string_view kParts[] = {property::kLast, property::kFirst, property::kMiddle,
                                           property::kTitle, property::kSuffix};
    for (std::size_t at = 0; at < parts.size(); ++at) {
        setText(kParts[at], parts[at]);
    }
    names_ = std::move(parts);
    keep(property::kLast, line, more || !listsOf(line).empty() ? componentsOf(line, 5) : std::string());
    return true;
}

bool CardReader::readFullName(ContentLine& line) {
    const std::string name(trim(line.text()));
    if (fullNameLine_ && (name != fullName_ || !line.params.empty())) {
        return false;
    }
    if (!fullNameLine_ && !name.empty()) {
        fullName_ = name;
        fullNameLine_ = &line;
    }
    return true;
}

bool CardReader::readPhoneticName(const ContentLine& line) {
    const bool phonetic = std::any_of(line.params.begin(), line.params.end(), [](const Param& param) {
        return param.name == "TYPE" && !param.values.empty() &&
               equalsIgnoringCase(param.values[0], "X-IRMC-N");
    });
    if (!phonetic || isSet(property::kLastPhonetic) || isSet(property::kFirstPhonetic)) {
        return false;
    }
    std::vector<std::string> parts = line.components(5);
    parts.resize(5);
    setText(property::kLastPhonetic, parts[0]);
    setText(property::kFirstPhonetic, parts[1]);
    return true;
}

bool CardReader::readOrganization(ContentLine& line) {
    if (isSet(property::kOrganization) || isSet(property::kDepartment)) {
        return false;
    }
    const std::vector<std::string> parts = line.components(kMaxParts);
    setText(property::kOrganization, parts[0]);
    std::string department;
    for (std::size_t at = 1; at < parts.size(); ++at) {
        if (!parts[at].empty()) {
            department += (department.empty() ? "" : "; ") + parts[at];
        }
    }
    if (parts[0].empty() && department.empty()) {
        return true; // the next one may be the card's
    }
    setText(property::kDepartment, std::move(department));
    keep(property::kOrganization, line, parts.size() > 2 ? componentsOf(line) : std::string());
    return true;
}

bool CardReader::readText(const Rule& rule, ContentLine& line) {
    std::string value = line.text();
    const bool note = rule.property == property::kNote;
    if (!note) {
        value = trim(value);
    }
    if (trim(value).empty()) {
        return true;
    }
    if (isSet(rule.property)) {
        if (!note) {
            return text(rule.property) == value;
        }
        if (std::string& whole = *card_.values[std::string(rule.property)].as<std::string>();
            whole != value) {
            whole += '\n' + value;
        }
        return true;
    }
    setText(rule.property, std::move(value));
    keep(rule.property, line, rule.property == property::kNickname ? listsOf(line) : std::string());
    return true;
}

bool CardReader::readDay(const Rule& rule, ContentLine& line) {
    if (trim(line.value).empty()) {
        return true;
    }
    if (isSet(rule.property)) {
        return false;
    }
    const auto date = takeDay(line);
    if (!date) {
        return leaveOutUnlessPartial(line);
    }
    card_.values[std::string(rule.property)] = *date;
    keep(rule.property, line, timeOf(line));
    return true;
}

// Returns a day with its time, which the address book does not keep; empty when it has no time.
std::string CardReader::timeOf(const ContentLine& line) {
    const std::string text(trim(line.text()));
    return text.find_first_of("Tt") == std::string::npos ? std::string() : escape(text);
}

// Leaves a line out that has no day; returns false when it is to be kept because it has a part of one.
bool CardReader::leaveOutUnlessPartial(const ContentLine& line) {
    if (saysLessThanADay(line)) {
        return false;
    }
    leaveOut(line, "no date");
    return true;
}

bool CardReader::readPicture(ContentLine& line) {
    if (trim(line.value).empty()) {
        return true;
    }
    const auto data = pictureData(line);
    if (!data) {
        line.transfer = Transfer::none; // an address, even if the line says that it is data
        return false;
    }
    if (isSet(property::kImage)) {
        return false;
    }
    Base64 picture = decodeBase64(*data);
    if (!picture.valid) {
        leaveOut(line, "the picture is no base64 data");
        return true;
    }
    if (!picture.complete) {
        leaveOut(line, "the last bits of a picture, which is incomplete");
    }
    if (picture.bytes.empty()) {
        return true;
    }
    card_.values[std::string(property::kImage)] = std::move(picture.bytes);
    std::erase_if(line.params, [](const Param& param) {
        return param.name == "TYPE" || param.name == "VALUE" || param.name == "MEDIATYPE";
    });
    keep(property::kImage, line);
    return true;
}

bool CardReader::readUid(const Rule& rule, const ContentLine& line) {
    const std::string uid(trim(line.text()));
    if (uid.empty()) {
        return true;
    }
    if (rule.shape == Shape::addressBookUid) {
        if (abUuid_.empty()) {
            abUuid_ = uuidOf(uid);
        }
        return true;
    }
    if (uid_.empty()) {
        uid_ = uid;
    }
    if (uid == uid_) {
        return true;
    }
    keepUid_ = true; // so that it is the first one again when it is written
    return false;
}

// An order that is unknown changes nothing, and is preserved.
bool CardReader::readNameOrder(const ContentLine& line) {
    const std::string_view order = trim(line.value);
    const bool lastFirst = equalsIgnoringCase(order, "LASTFIRST");
    if (!lastFirst && !equalsIgnoringCase(order, "FIRSTLAST")) {
        return false;
    }
    order_ = lastFirst ? person_flags::kLastNameFirst : person_flags::kFirstNameFirst;
    return true;
}

// Preserves the parameters of a line of a group, which is written with this name and value.
void CardReader::keepOfGroup(const char* name, const ContentLine& line, const std::string& value) {
    if (!line.params.empty()) {
        groupAdditions_.push_back(kAddition + (name + storedParams(line.params, {})) + ':' + value);
    }
}

bool CardReader::readMember(const ContentLine& line) {
    std::string member(trim(line.text()));
    if (!member.empty() && members_.insert(uuidOf(member)).second) {
        keepOfGroup("X-ADDRESSBOOKSERVER-MEMBER", line, escapeUri(member));
        card_.memberUids.push_back(std::move(member));
    }
    return true;
}

} // namespace addressbook::vcard

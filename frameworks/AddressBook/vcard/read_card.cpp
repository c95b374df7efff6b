// Reading order: readCard at the end, then CardReader from its run() down.

#include "frameworks/AddressBook/vcard/read_card.h"

#include "frameworks/AddressBook/values/uid.h"
#include "frameworks/AddressBook/vcard/card_lines.h"
#include "frameworks/AddressBook/vcard/digest.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/full_name.h"
#include "frameworks/AddressBook/vcard/labels.h"
#include "frameworks/AddressBook/vcard/line_values.h"
#include "frameworks/AddressBook/vcard/preserved_parameters.h"
#include "frameworks/AddressBook/vcard/rules.h"
#include "frameworks/AddressBook/vcard/version4.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace addressbook::vcard {

namespace {

// The version of a card: 2.1 has no lists, 4.0 writes unique ids as URIs.
enum class Version { v21, v3, v4 };

struct LabelInGroup {
    ContentLine* line = nullptr;
    std::string text;
    bool used = false;
};

class CardReader {
  public:
    CardReader(std::vector<ContentLine>& lines, Card& card) : lines_(lines), card_(card) {}

    // Reads the card. Returns why it is refused; empty when it is not.
    std::string run() {
        collectGroups();
        for (ContentLine& line : lines_) {
            const Rule* rule = ruleFor(line.key);
            if (!rule || !decodeText(*rule, line)) {
                if (!rule) {
                    unknown_.push_back(&line);
                }
                continue;
            }
            if (!(card_.kind == Kind::group ? readGroupLine(*rule, line) : readLine(*rule, line))) {
                unknown_.push_back(&line);
            }
        }
        return card_.kind == Kind::group ? finishGroup() : finishPerson();
    }

  private:
    // Collects labels and country codes by group, before anything is read: they come after the lines to which
    // they belong.
    void collectGroups() {
        for (ContentLine& line : lines_) {
            const Rule* rule = ruleFor(line.key);
            if (!rule) {
                continue;
            }
            if (rule->shape == Shape::kind && equalsIgnoringCase(trim(line.value), "group")) {
                card_.kind = Kind::group;
            }
            if (line.key == "VERSION") {
                version_ = trim(line.value) == "2.1"           ? Version::v21
                           : trim(line.value).starts_with("4") ? Version::v4
                                                               : Version::v3;
            }
            if (line.group.empty()) {
                continue;
            }
            if (rule->shape == Shape::label) {
                labels_.emplace(upperCase(line.group), LabelInGroup{&line, line.text(), false});
            } else if (rule->shape == Shape::country) {
                countries_.emplace(upperCase(line.group), LabelInGroup{&line, line.text(), false});
            }
        }
    }

    // Leaves a line out and says why.
    void leaveOut(const ContentLine& line, const std::string& reason) {
        card_.skipped.push_back({card_.number, line.number, reason + ": " + excerpt(render(line))});
    }

    // Decodes text in base64; returns false when it is not text.
    bool decodeText(const Rule& rule, ContentLine& line) {
        if (line.transfer != Transfer::base64 || rule.shape == Shape::picture) {
            return true;
        }
        const Base64 text = decodeBase64(line.value);
        if (!text.valid) {
            leaveOut(line, "no base64 data");
            return false;
        }
        line.value = toUtf8(std::string(text.bytes.begin(), text.bytes.end()), {});
        line.transfer = Transfer::quotedPrintable; // where "\n" is not an escape, either
        return true;
    }

    bool readGroupLine(const Rule& rule, ContentLine& line) {
        switch (rule.shape) {
        case Shape::fullName:
            setText(property::kGroupName, line.text());
            keepOfGroup("FN", line, escape(line.text()));
            return true;
        case Shape::name:
            names_ = line.components(6);
            return true;
        case Shape::member:
            return readMember(line);
        case Shape::uid:
        case Shape::addressBookUid:
            return readUid(rule, line);
        case Shape::kind:
        case Shape::derived:
            return true;
        default:
            return false;
        }
    }

    bool readLine(const Rule& rule, ContentLine& line) {
        switch (rule.shape) {
        case Shape::name:
            return readName(line);
        case Shape::phoneticName:
            return readPhoneticName(line);
        case Shape::organization:
            return readOrganization(line);
        case Shape::text:
            return readText(rule, line);
        case Shape::day:
            return readDay(rule, line);
        case Shape::picture:
            return readPicture(line);
        case Shape::company:
            company_ = equalsIgnoringCase(trim(line.value), "COMPANY");
            return true;
        case Shape::nameOrder:
            order_ = equalsIgnoringCase(trim(line.value), "LASTFIRST")   ? 16
                     : equalsIgnoringCase(trim(line.value), "FIRSTLAST") ? 32
                                                                         : 0;
            return order_ != 0;
        case Shape::kind:
            if (equalsIgnoringCase(trim(line.value), "org")) {
                company_ = true;
                return true;
            }
            if (equalsIgnoringCase(trim(line.value), "individual")) {
                company_ = company_.value_or(false);
                return true;
            }
            return false;
        case Shape::uid:
        case Shape::addressBookUid:
            return readUid(rule, line);
        case Shape::categories:
            for (const std::string_view name : splitEscaped(line.value, ',', kMaxCardBytes)) {
                if (std::string text(trim(unescape(name))); !text.empty()) {
                    card_.categories.push_back(std::move(text));
                }
            }
            return true;
        case Shape::fullName:
            return readFullName(line);
        case Shape::label:
            return usedLabel(labels_, line);
        case Shape::country:
            return usedLabel(countries_, line);
        case Shape::derived:
            return true;
        case Shape::member:
            return false;
        default:
            return readEntry(rule, line);
        }
    }

    // Whether an entry has used the label in [line], or an equal one. For lines before their entry this is
    // asked again at the end.
    bool usedLabel(const std::unordered_map<std::string, LabelInGroup>& lines, const ContentLine& line) {
        const auto found = lines.find(upperCase(line.group));
        return found != lines.end() && found->second.used &&
               (found->second.line == &line || found->second.text == line.text());
    }

    const std::string& text(std::string_view property) const {
        static const std::string kNone;
        const auto found = card_.values.find(std::string(property));
        const auto* string = found == card_.values.end() ? nullptr : found->second.as<std::string>();
        return string ? *string : kNone;
    }

    void setText(std::string_view property, std::string text) {
        if (!text.empty()) {
            card_.values[std::string(property)] = std::move(text);
        }
    }

    bool isSet(std::string_view property) const { return card_.values.contains(std::string(property)); }

    // Preserves the parameters of a line whose property is no list.
    void keep(std::string_view property, ContentLine& line, std::string asRead = {}) {
        additions_.push_back(
            {property, 0, kNotPreferred, line.group, line.key, std::move(line.params), std::move(asRead)});
    }

    // Returns the value as read when its components are lists, which become one text each; else empty text.
    std::string listsOf(const ContentLine& line) const {
        return version_ != Version::v21 && hasUnescaped(line.value, ',') ? renderValue(line) : std::string();
    }

    // The value as it is, but for commas that are no separators, with at least [count] components.
    std::string componentsOf(const ContentLine& line, std::size_t count = 0) const {
        const std::vector<std::string> parts = line.components(kMaxParts);
        std::string value;
        if (version_ != Version::v21) {
            value = renderValue(line);
        } else {
            for (const std::string& part : parts) {
                value += (&part == parts.data() ? "" : ";") + escape(part);
            }
        }
        return value.append(count > parts.size() ? count - parts.size() : 0, ';');
    }

    bool readName(ContentLine& line) {
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

    bool readFullName(ContentLine& line) {
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

    bool readPhoneticName(const ContentLine& line) {
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

    bool readOrganization(ContentLine& line) {
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
        setText(property::kDepartment, std::move(department));
        keep(property::kOrganization, line, parts.size() > 2 ? componentsOf(line) : std::string());
        return true;
    }

    bool readText(const Rule& rule, ContentLine& line) {
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

    bool readDay(const Rule& rule, ContentLine& line) {
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
    static std::string timeOf(const ContentLine& line) {
        const std::string text(trim(line.text()));
        return text.find_first_of("Tt") == std::string::npos ? std::string() : escape(text);
    }

    // Leaves a line out that has no day; returns false when it is to be kept because it has a part of one.
    bool leaveOutUnlessPartial(const ContentLine& line) {
        if (saysLessThanADay(line)) {
            return false;
        }
        leaveOut(line, "no date");
        return true;
    }

    bool readPicture(ContentLine& line) {
        if (trim(line.value).empty()) {
            return true;
        }
        const auto data = pictureData(line);
        if (!data || isSet(property::kImage)) {
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

    bool readUid(const Rule& rule, const ContentLine& line) {
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

    // Preserves the parameters of a line of a group, which is written with this name and value.
    void keepOfGroup(const char* name, const ContentLine& line, const std::string& value) {
        if (!line.params.empty()) {
            groupAdditions_.push_back(kAddition + (name + renderParams(line.params)) + ':' + value);
        }
    }

    bool readMember(const ContentLine& line) {
        std::string member(trim(line.text()));
        if (!member.empty() && members_.insert(uuidOf(member)).second) {
            keepOfGroup("X-ADDRESSBOOKSERVER-MEMBER", line, escapeUri(member));
            card_.memberUids.push_back(std::move(member));
        }
        return true;
    }

    // Entries of lists.

    bool readEntry(const Rule& rule, ContentLine& line) {
        std::string_view property = rule.property;
        Value value;
        std::string asRead;
        switch (rule.shape) {
        case Shape::days:
            if (const auto date = takeDay(line)) {
                value = *date;
                asRead = timeOf(line);
            } else {
                return trim(line.value).empty() || leaveOutUnlessPartial(line);
            }
            break;
        case Shape::addresses:
            if (!line.value.starts_with(";;") || !listsOf(line).empty()) {
                asRead = componentsOf(line, 7);
            }
            value = readAddress(line);
            break;
        case Shape::messaging:
            value = takeMessaging(line, property, asRead);
            break;
        case Shape::messagingNames:
            value = messagingValue(rule.label, std::string(trim(line.text())), property);
            break;
        case Shape::profiles:
            value = takeProfile(line);
            break;
        case Shape::relations:
            if (equalsIgnoringCase(line.param("VALUE"), "uri") ||
                line.value.find("://") != std::string::npos ||
                equalsIgnoringCase(schemeOf(line.value), "urn") ||
                equalsIgnoringCase(schemeOf(line.value), "mailto")) {
                return false;
            }
            value = takeText(rule, line);
            break;
        default:
            value = takeText(rule, line);
        }
        if (value.empty()) {
            return true;
        }
        addEntry(property, rule, std::move(value), std::move(asRead), line);
        return true;
    }

    // Returns the address in [line]; its country code is in another line of the group.
    Value readAddress(const ContentLine& line) {
        Dictionary fields = addressFields(line);
        const auto code = countries_.find(upperCase(line.group));
        // Some programs write a whole address there, which is then kept as an unknown line.
        if (code != countries_.end() && !line.group.empty() && code->second.text.size() == 2 &&
            !code->second.used) {
            fields["CountryCode"] = code->second.text;
            code->second.used = true;
        }
        return fields.empty() ? Value() : Value(std::move(fields));
    }

    void addEntry(std::string_view property, const Rule& rule, Value value, std::string asRead,
                  ContentLine& line) {
        Value& slot = card_.values[std::string(property)];
        if (slot.empty()) {
            slot = MultiValue();
        }
        std::vector<Entry>& entries = slot.as<MultiValue>()->entries;

        Addition addition{property, entries.size(),   kNotPreferred, line.group, line.key,
                          {},       std::move(asRead)};
        std::optional<std::string> groupLabel;
        if (const auto found = labels_.find(upperCase(line.group));
            found != labels_.end() && !line.group.empty()) {
            found->second.used = true;
            groupLabel = found->second.text;
        }
        const auto take = rule.shape == Shape::relations ? takeRelation : takeLabel;
        std::string label = take(line, rule, groupLabel, addition);
        if (const auto same = sameEntry(rule, property, entries, label, value, line)) {
            addition.entry = *same;
            if (entries[*same].label != label) {
                addition.params.clear();
                take(line, rule, entries[*same].label, addition);
            }
        } else {
            entries.push_back({newUuid(), std::move(label), std::move(value)});
        }
        additions_.push_back(std::move(addition));
    }

    // Returns the index of the equal entry that a line of another property has given already: programs write
    // a messaging name, an anniversary or a relation under several properties, for other readers.
    std::optional<std::size_t> sameEntry(const Rule& rule, std::string_view property,
                                         const std::vector<Entry>& entries, const std::string& label,
                                         const Value& value, const ContentLine& line) {
        const bool messaging = isMessaging(property) || property == property::kInstantMessage;
        if (!messaging && rule.property != property::kOtherDates &&
            rule.property != property::kRelatedNames) {
            return std::nullopt;
        }
        std::optional<std::size_t> best;
        for (const Addition& each : additions_) {
            if (each.property != property || each.source == line.key ||
                !(entries[each.entry].value == value) ||
                repeated_.contains({each.property, each.entry, line.key})) {
                continue;
            }
            if (entries[each.entry].label == label) {
                best = each.entry;
                break;
            }
            if (messaging && !best) {
                best = each.entry;
            }
        }
        if (best) {
            repeated_.emplace(property, *best, line.key);
        }
        return best;
    }

    // The end: values that depend on the whole card.

    std::string finishGroup() {
        if (!isSet(property::kGroupName) && !names_.empty()) {
            setText(property::kGroupName, names_[0].empty() && names_.size() > 1 ? names_[1] : names_[0]);
        }
        if (!isSet(property::kGroupName) && card_.memberUids.empty() && unknown_.empty()) {
            return "the group has neither name nor members";
        }
        finishUid();
        keepUnknown(std::move(groupAdditions_));
        return {};
    }

    std::string finishPerson() {
        finishName();
        if (card_.values.size() == (isSet(property::kPersonFlags) ? 1 : 0) && unknown_.empty() &&
            card_.categories.empty()) {
            return "the card has nothing in it";
        }
        setPrimaries(additions_, card_);
        finishUid();
        std::set<std::string> groups;
        for (const ContentLine* line : unknown_) {
            if (!line->group.empty() && !isUsedLabel(*line)) {
                groups.insert(upperCase(line->group));
            }
        }
        keepUnknown(additionLines(additions_, card_, groups, groupNames_));
        return {};
    }

    void finishName() {
        const bool named =
            std::any_of(names_.begin(), names_.end(), [](const auto& part) { return !part.empty(); });
        if (!named && !fullName_.empty()) {
            if (fullName_ == text(property::kOrganization)) {
                company_ = company_.value_or(true);
            } else if (company_.value_or(false) && !isSet(property::kOrganization)) {
                setText(property::kOrganization, fullName_);
            } else if (!isSaidElsewhere(fullName_)) {
                NameParts parts = splitFullName(fullName_);
                setText(property::kTitle, std::move(parts.title));
                setText(property::kFirst, std::move(parts.first));
                setText(property::kLast, std::move(parts.last));
                setText(property::kSuffix, std::move(parts.suffix));
            }
        }
        if (const int flags = (company_.value_or(false) ? 1 : 0) | order_) {
            card_.values[std::string(property::kPersonFlags)] = std::int64_t{flags};
        }
        if (fullNameLine_) {
            keep({}, *fullNameLine_, fullName_ == shownName(card_) ? std::string() : escape(fullName_));
        }
    }

    // Whether a text, which is the name of a card without a name, is also the value of another property.
    bool isSaidElsewhere(const std::string& name) const {
        if (text(property::kNickname) == name) {
            return true;
        }
        for (const std::string_view property : {property::kEmail, property::kPhone}) {
            const auto found = card_.values.find(std::string(property));
            const auto* list = found == card_.values.end() ? nullptr : found->second.as<MultiValue>();
            if (list && !list->entries.empty() && list->entries.front().value == Value(name)) {
                return true;
            }
        }
        return false;
    }

    void finishUid() {
        std::string uuid = abUuid_;
        if (!uid_.empty()) {
            const std::string other = uuidOf(uid_);
            if (uuid.empty()) {
                uuid = other;
            } else if (uuid != other) {
                card_.otherUuid = other;
            }
        }
        if (uuid.empty()) {
            return;
        }
        card_.uid = uuid + (card_.kind == Kind::group ? ":ABGroup" : ":ABPerson");
        // The UID is kept as read only if it would be written differently.
        const bool plain = uid_ == uuid || (version_ == Version::v4 && uid_ == "urn:uuid:" + uuid);
        keepUid_ = keepUid_ || (!uid_.empty() && !plain);
    }

    bool isUsedLabel(const ContentLine& line) {
        return (line.key == "X-ABLABEL" && usedLabel(labels_, line)) ||
               (line.key == "X-ABADR" && usedLabel(countries_, line));
    }

    void keepUnknown(std::vector<std::string> lines) {
        if (keepUid_) {
            lines.push_back("UID:" + escapeUri(uid_));
        }
        for (ContentLine* line : unknown_) {
            if (!isUsedLabel(*line)) {
                if (version_ == Version::v4) {
                    fromVersion4(*line);
                }
                line->group = groupNames_.renamed(line->group);
                lines.push_back(render(*line));
            }
        }
        if (lines.empty()) {
            return;
        }
        Array array;
        for (std::string& line : lines) {
            array.emplace_back(std::move(line));
        }
        card_.values[std::string(property::kUnknownLines)] = std::move(array);
    }

    std::vector<ContentLine>& lines_;
    Card& card_;
    Version version_ = Version::v3;
    std::unordered_map<std::string, LabelInGroup> labels_, countries_; // by group in upper case
    std::vector<ContentLine*> unknown_;
    std::vector<Addition> additions_;
    std::vector<std::string> groupAdditions_;
    std::vector<std::string> names_; // of N
    std::string fullName_, uid_, abUuid_;
    ContentLine* fullNameLine_ = nullptr;
    std::set<std::string> members_;
    std::set<std::tuple<std::string_view, std::size_t, std::string>> repeated_; // see sameEntry
    std::optional<bool> company_;                                               // set by X-ABShowAs or KIND
    int order_ = 0;
    bool keepUid_ = false;
    GroupNames groupNames_; // of the stored lines
};

} // namespace

std::variant<Card, Problem> readCard(std::vector<ContentLine> lines, std::size_t number, std::size_t line) {
    Card card;
    card.number = number;
    card.line = line;
    card.digest = digestOf(lines);
    CardReader reader(lines, card);
    std::string reason = reader.run();
    if (!reason.empty()) {
        if (!card.skipped.empty()) {
            return Problem{number, card.skipped.front().line, reason + "; " + card.skipped.front().reason};
        }
        return Problem{number, line, std::move(reason)};
    }
    return card;
}

} // namespace addressbook::vcard

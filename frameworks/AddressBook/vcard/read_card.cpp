// Reading order: readCard at the end, CardReader from its run() down, helpers on values first.

#include "read_card.h"

#include "card_lines.h"
#include "dates.h"
#include "encoding.h"
#include "frameworks/AddressBook/store/store.h"
#include "labels.h"
#include "rules.h"

#include <algorithm>
#include <limits>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

namespace addressbook::vcard {

namespace {

constexpr int kNotPreferred = std::numeric_limits<int>::max();

// What a line says about its entry besides label and value.
struct Addition {
    std::string_view property;
    std::size_t entry = 0;
    int preference = kNotPreferred; // 1 is the most preferred
    std::string group;
    std::string source;        // the vCard property's name in upper case
    std::vector<Param> params; // that no property holds
    bool messaging = false;    // the property holds names at one messaging service
};

struct LabelInGroup {
    ContentLine* line = nullptr;
    std::string text;
    bool used = false;
};

// "scheme" of "scheme:rest" when it looks like one.
std::string_view schemeOf(std::string_view uri) {
    const std::size_t colon = uri.find(':');
    if (colon == std::string_view::npos || colon == 0)
        return {};
    const std::string_view scheme = uri.substr(0, colon);
    const bool plain = std::all_of(scheme.begin(), scheme.end(), [](char byte) {
        return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
               byte == '+' || byte == '-' || byte == '.';
    });
    return plain ? scheme : std::string_view();
}

std::string withoutPrefix(std::string text, std::string_view prefix) {
    if (equalsIgnoringCase(std::string_view(text).substr(0, prefix.size()), prefix))
        text.erase(0, prefix.size());
    return text;
}

bool isMessaging(std::string_view property) {
    const auto services = messagingServices();
    return std::any_of(services.begin(), services.end(),
                       [&](const MessagingService& each) { return each.property == property; });
}

class CardReader {
  public:
    CardReader(std::vector<ContentLine>& lines, Card& card) : lines_(lines), card_(card) {}

    // Empty, or why the card is refused; line() is then the line to blame.
    std::string run() {
        collectGroups();
        for (ContentLine& line : lines_) {
            line_ = line.number;
            const Rule* rule = ruleFor(line.key);
            const bool known =
                rule && (card_.kind == Kind::group ? readGroupLine(*rule, line) : readLine(*rule, line));
            if (!problem_.empty())
                return problem_;
            if (!known)
                unknown_.push_back(&line);
        }
        line_ = card_.line;
        return card_.kind == Kind::group ? finishGroup() : finishPerson();
    }

    std::size_t line() const { return line_; }

  private:
    // Labels and country codes stand after the line that they belong to, so they are looked up before
    // anything is read.
    void collectGroups() {
        for (ContentLine& line : lines_) {
            const Rule* rule = ruleFor(line.key);
            if (!rule)
                continue;
            if (rule->shape == Shape::kind && equalsIgnoringCase(trim(line.value), "group"))
                card_.kind = Kind::group;
            if (line.group.empty())
                continue;
            if (rule->shape == Shape::label)
                labels_.emplace(upperCase(line.group), LabelInGroup{&line, line.text(), false});
            else if (rule->shape == Shape::country)
                countries_.emplace(upperCase(line.group), LabelInGroup{&line, line.text(), false});
        }
    }

    bool readGroupLine(const Rule& rule, ContentLine& line) {
        switch (rule.shape) {
        case Shape::fullName:
            setText(property::kGroupName, line.text());
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
            if (equalsIgnoringCase(trim(line.value), "org"))
                company_ = true;
            return equalsIgnoringCase(trim(line.value), "org") ||
                   equalsIgnoringCase(trim(line.value), "individual");
        case Shape::uid:
        case Shape::addressBookUid:
            return readUid(rule, line);
        case Shape::categories:
            for (const std::string_view name : splitEscaped(line.value, ','))
                if (std::string text(trim(unescape(name))); !text.empty())
                    card_.categories.push_back(std::move(text));
            return true;
        case Shape::fullName:
            if (fullName_.empty())
                fullName_ = trim(line.text());
            return true;
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

    // Whether an entry took the label, or one that says the same; lines that come before their entry are
    // asked for again at the end.
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
        if (!text.empty())
            card_.values[std::string(property)] = std::move(text);
    }

    bool isSet(std::string_view property) const { return card_.values.contains(std::string(property)); }

    // Keeps the parameters of a line that fills a property which is no list.
    void keepParams(std::string_view property, ContentLine& line) {
        additions_.push_back({property, 0, kNotPreferred, line.group, line.key, std::move(line.params)});
    }

    bool readName(ContentLine& line) {
        if (!names_.empty())
            return false;
        std::vector<std::string> parts = line.components(6);
        const bool more = parts.size() > 5 && !parts[5].empty(); // which the line itself has to keep
        parts.resize(5);
        constexpr std::string_view kParts[] = {property::kLast, property::kFirst, property::kMiddle,
                                               property::kTitle, property::kSuffix};
        for (std::size_t at = 0; at < parts.size(); ++at)
            setText(kParts[at], parts[at]);
        names_ = std::move(parts);
        if (!more)
            keepParams(property::kLast, line);
        return !more;
    }

    bool readPhoneticName(const ContentLine& line) {
        const bool phonetic = std::any_of(line.params.begin(), line.params.end(), [](const Param& param) {
            return param.name == "TYPE" && !param.values.empty() &&
                   equalsIgnoringCase(param.values[0], "X-IRMC-N");
        });
        if (!phonetic || isSet(property::kLastPhonetic) || isSet(property::kFirstPhonetic))
            return false;
        std::vector<std::string> parts = line.components(5);
        parts.resize(5);
        setText(property::kLastPhonetic, parts[0]);
        setText(property::kFirstPhonetic, parts[1]);
        return true;
    }

    bool readOrganization(ContentLine& line) {
        if (isSet(property::kOrganization) || isSet(property::kDepartment))
            return false;
        const std::vector<std::string> parts = line.components(1000);
        setText(property::kOrganization, parts[0]);
        std::string department;
        for (std::size_t at = 1; at < parts.size(); ++at)
            if (!parts[at].empty())
                department += (department.empty() ? "" : "; ") + parts[at];
        setText(property::kDepartment, std::move(department));
        keepParams(property::kOrganization, line);
        return true;
    }

    bool readText(const Rule& rule, ContentLine& line) {
        std::string value = line.text();
        const bool note = rule.property == property::kNote;
        if (!note)
            value = trim(value);
        if (trim(value).empty())
            return true;
        if (isSet(rule.property)) {
            if (!note)
                return text(rule.property) == value;
            if (std::string& whole = *card_.values[std::string(rule.property)].as<std::string>();
                whole != value)
                whole += '\n' + value;
            return true;
        }
        setText(rule.property, std::move(value));
        keepParams(rule.property, line);
        return true;
    }

    // The date of [line], its year left out when a parameter says so. Takes the parameters that it
    // understands away.
    static std::optional<Date> takeDay(ContentLine& line) {
        int omitted = 0;
        for (const char byte : line.param("X-APPLE-OMIT-YEAR").substr(0, 4))
            omitted = byte >= '0' && byte <= '9' ? omitted * 10 + (byte - '0') : 0;
        const auto date = parseDay(line.text(), omitted);
        if (date)
            std::erase_if(line.params, [](const Param& param) {
                return param.name == "X-APPLE-OMIT-YEAR" || param.name == "VALUE";
            });
        return date;
    }

    bool readDay(const Rule& rule, ContentLine& line) {
        if (trim(line.value).empty())
            return true;
        if (isSet(rule.property))
            return false;
        const auto date = takeDay(line);
        if (!date)
            return false;
        card_.values[std::string(rule.property)] = *date;
        keepParams(rule.property, line);
        return true;
    }

    // The picture's data: declared as base64, in a data URI, or undeclared and plainly no address. Nothing
    // when the line only says where the picture is.
    static std::optional<std::string> pictureData(const ContentLine& line) {
        const std::string_view value = trim(line.value);
        const std::string_view scheme = schemeOf(value);
        if (equalsIgnoringCase(scheme, "data")) {
            const std::string uri = line.text();
            const std::size_t comma = uri.find(',');
            if (comma == std::string::npos || !upperCase(uri.substr(0, comma)).ends_with(";BASE64"))
                return std::nullopt;
            return uri.substr(comma + 1);
        }
        if (line.transfer == Transfer::base64)
            return std::string(value);
        if (!scheme.empty() || !line.param("VALUE").empty() || !decodeBase64(value).valid)
            return std::nullopt;
        return std::string(value);
    }

    bool readPicture(ContentLine& line) {
        if (trim(line.value).empty())
            return true;
        const auto data = pictureData(line);
        if (!data || isSet(property::kImage))
            return false;
        Base64 picture = decodeBase64(*data);
        if (!picture.valid) {
            problem_ = "the picture is no base64 data";
            return true;
        }
        if (!picture.complete)
            card_.skipped.push_back({card_.number, line.number, "the picture's data is incomplete"});
        if (picture.bytes.empty())
            return true;
        card_.values[std::string(property::kImage)] = std::move(picture.bytes);
        std::erase_if(line.params, [](const Param& param) {
            return param.name == "TYPE" || param.name == "VALUE" || param.name == "MEDIATYPE";
        });
        keepParams(property::kImage, line);
        return true;
    }

    bool readUid(const Rule& rule, const ContentLine& line) {
        const std::string uid(trim(line.text()));
        if (uid.empty())
            return true;
        if (rule.shape == Shape::addressBookUid) {
            if (abUuid_.empty())
                abUuid_ = uuidOf(uid);
            return true;
        }
        if (uid_.empty())
            uid_ = uid;
        if (uid == uid_)
            return true;
        keepUid_ = true; // so that it is again the first one
        return false;
    }

    bool readMember(const ContentLine& line) {
        const std::string member(trim(line.text()));
        if (!member.starts_with("urn:uuid:") && !schemeOf(member).empty())
            return false; // somebody elsewhere
        std::string uuid = uuidOf(member);
        if (members_.insert(uuid).second)
            card_.memberUids.push_back(std::move(uuid));
        return true;
    }

    // Entries of lists.

    bool readEntry(const Rule& rule, ContentLine& line) {
        std::string_view property = rule.property;
        std::string fallback(rule.label);
        Value value;
        switch (rule.shape) {
        case Shape::days:
            if (const auto date = takeDay(line))
                value = *date;
            else
                return trim(line.value).empty();
            break;
        case Shape::addresses:
            value = readAddress(line);
            break;
        case Shape::messaging:
            value = readMessaging(line, property);
            break;
        case Shape::messagingNames:
            fallback = kOtherLabel;
            value = messagingValue(rule.label, std::string(trim(line.text())), property);
            break;
        case Shape::profiles:
            value = readProfile(line);
            break;
        case Shape::relations:
            if (equalsIgnoringCase(line.param("VALUE"), "uri") ||
                line.value.find("://") != std::string::npos ||
                equalsIgnoringCase(schemeOf(line.value), "urn") ||
                equalsIgnoringCase(schemeOf(line.value), "mailto"))
                return false;
            fallback = takeRelation(line);
            value = textValue(rule, line);
            break;
        default:
            value = textValue(rule, line);
        }
        if (value.empty())
            return true;
        addEntry(property, std::move(fallback), std::move(value), line);
        return true;
    }

    static Value textValue(const Rule& rule, ContentLine& line) {
        std::string value(trim(line.text()));
        if (rule.shape == Shape::telephones)
            value = withoutPrefix(std::move(value), "tel:");
        else if (rule.shape == Shape::links)
            value = withoutPrefix(std::move(value), "mailto:");
        std::erase_if(line.params, [](const Param& param) { return param.name == "VALUE"; });
        return value.empty() ? Value() : Value(std::move(value));
    }

    static std::string takeRelation(ContentLine& line) {
        for (auto param = line.params.begin(); param != line.params.end(); ++param)
            if (param->name == "TYPE") {
                std::string label = relationLabel(param->values);
                line.params.erase(param);
                if (!label.empty())
                    return label;
                break;
            }
        return std::string(kOtherLabel);
    }

    Value readAddress(const ContentLine& line) {
        std::vector<std::string> parts = line.components(7);
        parts.resize(7);
        // Post-office box and extended address are lines of the street here.
        std::string street;
        for (std::size_t at = 0; at < 3; ++at)
            if (!parts[at].empty())
                street += (street.empty() ? "" : "\n") + parts[at];
        Dictionary fields;
        const auto set = [&fields](const char* key, std::string text) {
            if (!text.empty())
                fields[key] = std::move(text);
        };
        set("Street", std::move(street));
        set("City", std::move(parts[3]));
        set("State", std::move(parts[4]));
        set("ZIP", std::move(parts[5]));
        set("Country", std::move(parts[6]));
        if (const auto code = countries_.find(upperCase(line.group));
            code != countries_.end() && !line.group.empty()) {
            // Some programs write a whole address there; that stays a line of its own.
            if (code->second.text.size() == 2 && !code->second.used) {
                set("CountryCode", code->second.text);
                code->second.used = true;
            }
        }
        return fields.empty() ? Value() : Value(std::move(fields));
    }

    // A name at a messaging service; [property] becomes the one that holds it.
    static Value messagingValue(std::string_view service, std::string user, std::string_view& property) {
        if (user.empty())
            return {};
        for (const MessagingService& each : messagingServices())
            if (equalsIgnoringCase(each.name, service)) {
                service = each.name;
                if (!each.property.empty()) {
                    property = each.property;
                    return user;
                }
            }
        Dictionary fields{{std::string(kInstantMessageUsername), std::move(user)}};
        if (!service.empty())
            fields[std::string(kInstantMessageService)] = std::string(service);
        return fields;
    }

    static Value readMessaging(ContentLine& line, std::string_view& property) {
        std::string user(trim(line.text()));
        const std::string scheme(schemeOf(user));
        if (!scheme.empty())
            user.erase(0, scheme.size() + 1);
        std::string service(line.param("X-SERVICE-TYPE"));
        if (service.empty() && !equalsIgnoringCase(scheme, "x-apple"))
            service = scheme;
        for (const MessagingService& each : messagingServices())
            if (equalsIgnoringCase(service, each.scheme))
                service = each.name;
        std::erase_if(line.params, [](const Param& param) { return param.name == "X-SERVICE-TYPE"; });
        return messagingValue(service, std::move(user), property);
    }

    static Value readProfile(ContentLine& line) {
        Dictionary fields;
        const auto take = [&](std::string_view name, std::string_view key) {
            for (Param& param : line.params)
                if (param.name == name) {
                    // The first TYPE that is not "pref" is the service.
                    const auto word =
                        std::find_if(param.values.begin(), param.values.end(), [](const auto& each) {
                            return !each.empty() && !equalsIgnoringCase(each, "pref");
                        });
                    if (word == param.values.end())
                        continue;
                    fields[std::string(key)] = std::move(*word);
                    param.values.erase(word);
                    break;
                }
            std::erase_if(line.params, [](const Param& param) { return param.values.empty(); });
        };
        take("TYPE", kSocialProfileService);
        take("X-USER", kSocialProfileUsername);
        take("X-USERID", kSocialProfileIdentifier);
        if (std::string url(trim(line.text())); !url.empty())
            fields[std::string(kSocialProfileUrl)] = std::move(url);
        return fields.empty() ? Value() : Value(std::move(fields));
    }

    void addEntry(std::string_view property, std::string fallback, Value value, ContentLine& line) {
        Value& slot = card_.values[std::string(property)];
        if (slot.empty())
            slot = MultiValue();
        std::vector<Entry>& entries = slot.as<MultiValue>()->entries;

        // Programs write a messaging name under several properties for the sake of older readers.
        for (const Addition& each : additions_)
            if (each.messaging && each.property == property && each.source != line.key &&
                entries[each.entry].value == value)
                return;

        Addition addition{property, entries.size(), kNotPreferred, line.group, line.key, {}};
        addition.messaging = isMessaging(property);
        std::string label = takeParams(line, addition);
        if (const auto found = labels_.find(upperCase(line.group));
            found != labels_.end() && !line.group.empty()) {
            if (!label.empty() && !found->second.text.empty()) // the words stay beside the label
                addition.params = std::move(typesBeside_);
            if (!found->second.text.empty()) {
                label = found->second.text;
                found->second.used = true;
            }
        }
        entries.push_back(
            {newUuid(), label.empty() ? std::move(fallback) : std::move(label), std::move(value)});
        additions_.push_back(std::move(addition));
    }

    // Takes the parameters of an entry: the label that its TYPE words say is the answer, the rest goes to
    // [addition]. typesBeside_ is what the rest would be if the label came from elsewhere.
    std::string takeParams(ContentLine& line, Addition& addition) {
        std::vector<std::string> types;
        typesBeside_.clear();
        for (Param& param : line.params) {
            if (param.name == "TYPE") {
                std::move(param.values.begin(), param.values.end(), std::back_inserter(types));
                continue;
            }
            if (param.name == "PREF") {
                const std::string number(line.param("PREF").substr(0, 3));
                addition.preference = std::max(1, std::atoi(number.c_str()));
            }
            addition.params.push_back(param);
        }
        TypeMeaning meaning = meaningOf(types);
        if (meaning.preferred && addition.preference == kNotPreferred)
            addition.preference = 1;
        typesBeside_ = addition.params;
        std::erase_if(types, [](const std::string& type) {
            const std::string upper = upperCase(type);
            return upper.empty() || upper == "PREF" || upper == "INTERNET" || upper == "VOICE";
        });
        if (!types.empty())
            typesBeside_.push_back({"TYPE", std::move(types)});
        if (!meaning.extra.empty())
            addition.params.push_back({"TYPE", std::move(meaning.extra)});
        return meaning.label;
    }

    // The end: what only the whole card tells.

    std::string finishGroup() {
        if (!isSet(property::kGroupName) && !names_.empty())
            setText(property::kGroupName, names_[0].empty() && names_.size() > 1 ? names_[1] : names_[0]);
        if (!isSet(property::kGroupName))
            return "the group has no name";
        finishUid();
        keepUnknown({});
        return {};
    }

    std::string finishPerson() {
        finishName();
        if (card_.values.empty())
            return lines_.empty() ? "the card is empty" : "the card has nothing that an address book shows";
        setPrimaries();
        finishUid();
        keepUnknown(additionLines());
        return {};
    }

    void finishName() {
        const bool named =
            std::any_of(names_.begin(), names_.end(), [](const auto& part) { return !part.empty(); });
        if (!named && !fullName_.empty()) {
            if (fullName_ == text(property::kOrganization))
                company_ = company_.value_or(true);
            else if (!isSaidElsewhere(fullName_))
                splitFullName();
        }
        if (const int flags = (company_.value_or(false) ? 1 : 0) | order_)
            card_.values[std::string(property::kPersonFlags)] = std::int64_t{flags};
    }

    // Whether a card without a name shows this text as its name, for want of one.
    bool isSaidElsewhere(const std::string& name) const {
        if (text(property::kNickname) == name)
            return true;
        for (const std::string_view property : {property::kEmail, property::kPhone}) {
            const auto found = card_.values.find(std::string(property));
            const auto* list = found == card_.values.end() ? nullptr : found->second.as<MultiValue>();
            if (list && !list->entries.empty() && list->entries.front().value == Value(name))
                return true;
        }
        return false;
    }

    // Only a full name: its last word is the last name, as names are mostly written.
    void splitFullName() {
        const std::size_t space = fullName_.rfind(' ');
        if (space == std::string::npos) {
            setText(property::kFirst, fullName_);
            return;
        }
        setText(property::kFirst, std::string(trim(std::string_view(fullName_).substr(0, space))));
        setText(property::kLast, fullName_.substr(space + 1));
    }

    // Each list's primary entry: the first of those with the best preference. PREF=n of the others stays.
    void setPrimaries() {
        std::map<std::string_view, Addition*> best;
        for (Addition& each : additions_)
            if (each.preference != kNotPreferred) {
                Addition*& chosen = best[each.property];
                if (!chosen || each.preference < chosen->preference)
                    chosen = &each;
            }
        for (auto& [property, chosen] : best) {
            auto& list = *card_.values[std::string(property)].as<MultiValue>();
            if (chosen->entry > 0)
                list.primary = list.entries[chosen->entry].identifier;
            std::erase_if(chosen->params, [](const Param& param) { return param.name == "PREF"; });
        }
    }

    void finishUid() {
        std::string uuid = abUuid_;
        if (!uid_.empty()) {
            const std::string other = uuidOf(uid_);
            if (uuid.empty())
                uuid = other;
            else if (uuid != other)
                card_.otherUuid = other;
        }
        if (uuid.empty())
            return;
        card_.uid = uuid + (card_.kind == Kind::group ? ":ABGroup" : ":ABPerson");
        keepUid_ = keepUid_ || (!uid_.empty() && uid_ != uuid);
    }

    // The additions as stored lines, each with the line that it belongs to, in the order in which those are
    // written.
    std::vector<std::string> additionLines() {
        std::set<std::string> groups;
        for (const ContentLine* line : unknown_)
            if (!line->group.empty() && !isUsedLabel(*line))
                groups.insert(upperCase(line->group));
        const auto isWanted = [&](const Addition& each) {
            return !each.params.empty() || groups.contains(upperCase(each.group));
        };
        std::vector<std::string> result;
        if (std::none_of(additions_.begin(), additions_.end(), isWanted))
            return result;
        std::map<std::pair<std::string_view, std::size_t>, const Addition*> byEntry;
        for (const Addition& each : additions_)
            byEntry.emplace(std::pair(each.property, each.entry), &each);
        // Of equal lines each needs an addition as soon as one does: they are told apart by their order.
        const std::vector<CardLine> lines = cardLines(card_);
        const auto additionOf = [&](const CardLine& line) {
            const auto found = byEntry.find({line.property, line.entry});
            return found == byEntry.end() ? nullptr : found->second;
        };
        const auto textOf = [](const CardLine& line) {
            return std::pair<std::string_view, std::string_view>(line.name, matchedValue(line));
        };
        std::set<std::pair<std::string_view, std::string_view>> texts;
        for (const CardLine& line : lines)
            if (const Addition* addition = additionOf(line); addition && isWanted(*addition))
                texts.insert(textOf(line));
        for (const CardLine& line : lines) {
            const Addition* addition = additionOf(line);
            if (!addition || !texts.contains(textOf(line)))
                continue;
            std::string text(1, kAddition);
            if (groups.contains(upperCase(addition->group)))
                text += groupNames_.renamed(addition->group) + '.';
            text += line.name + renderParams(addition->params) + ':';
            text += matchedValue(line);
            result.push_back(std::move(text));
        }
        return result;
    }

    bool isUsedLabel(const ContentLine& line) {
        return (line.key == "X-ABLABEL" && usedLabel(labels_, line)) ||
               (line.key == "X-ABADR" && usedLabel(countries_, line));
    }

    void keepUnknown(std::vector<std::string> lines) {
        if (keepUid_)
            lines.push_back("UID:" + escape(uid_));
        for (ContentLine* line : unknown_)
            if (!isUsedLabel(*line)) {
                line->group = groupNames_.renamed(line->group);
                lines.push_back(render(*line));
            }
        if (lines.empty())
            return;
        Array array;
        for (std::string& line : lines)
            array.emplace_back(std::move(line));
        card_.values[std::string(property::kUnknownLines)] = std::move(array);
    }

    std::vector<ContentLine>& lines_;
    Card& card_;
    std::size_t line_ = 0;
    std::string problem_;
    std::unordered_map<std::string, LabelInGroup> labels_, countries_; // by group in upper case
    std::vector<ContentLine*> unknown_;
    std::vector<Addition> additions_;
    std::vector<Param> typesBeside_;
    std::vector<std::string> names_; // of N
    std::string fullName_, uid_, abUuid_;
    std::set<std::string> members_;
    std::optional<bool> company_; // unless X-ABShowAs or KIND says nothing
    int order_ = 0;
    bool keepUid_ = false;
    GroupNames groupNames_; // of the stored lines
};

} // namespace

std::variant<Card, Problem> readCard(std::vector<ContentLine> lines, std::size_t number, std::size_t line) {
    Card card;
    card.number = number;
    card.line = line;
    CardReader reader(lines, card);
    std::string reason = reader.run();
    if (!reason.empty())
        return Problem{number, reader.line(), std::move(reason)};
    return card;
}

} // namespace addressbook::vcard

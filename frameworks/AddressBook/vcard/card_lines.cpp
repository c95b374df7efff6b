#include "frameworks/AddressBook/vcard/card_lines.h"

#include "frameworks/AddressBook/values/display_name.h"
#include "frameworks/AddressBook/vcard/content_line.h"
#include "frameworks/AddressBook/vcard/dates.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/labels.h"
#include "frameworks/AddressBook/vcard/origin.h"
#include "frameworks/AddressBook/vcard/rules.h"

#include <algorithm>
#include <array>

namespace addressbook::vcard {

namespace {

// How the data of a picture begins, and what vCards call it.
struct PictureType {
    std::string_view start, name;
};
constexpr std::array kPictureTypes{
    PictureType{"\xFF\xD8\xFF", "JPEG"}, PictureType{"\x89PNG", "PNG"},
    PictureType{"GIF8", "GIF"},          PictureType{"BM", "BMP"},
    PictureType{"II*", "TIFF"},          PictureType{"MM", "TIFF"},
};

// A card as the rule for the name to show looks at it.
class CardView final : public RecordView {
  public:
    explicit CardView(const Card& card) : card_(card) {}
    Kind kind() const override { return card_.kind; }
    const Value& value(std::string_view property) const override {
        static const Value kNone;
        const auto found = card_.values.find(std::string(property));
        return found == card_.values.end() ? kNone : found->second;
    }

  private:
    const Card& card_;
};

class Lines {
  public:
    Lines(const Card& card, bool pictures) : card_(card), pictures_(pictures) {}

    std::vector<CardLine> take() {
        if (card_.kind == Kind::group) {
            writeGroup();
        } else {
            for (const Rule& rule : rules()) {
                if (rule.use != Use::readOnly) {
                    write(rule);
                }
            }
        }
        return std::move(lines_);
    }

  private:
    const Value* find(std::string_view property) const {
        const auto found = card_.values.find(std::string(property));
        return found == card_.values.end() ? nullptr : &found->second;
    }

    std::string text(std::string_view property) const {
        const Value* value = find(property);
        const auto* string = value ? value->as<std::string>() : nullptr;
        return string ? *string : std::string();
    }

    std::int64_t flags() const {
        const Value* value = find(property::kPersonFlags);
        const auto* number = value ? value->as<std::int64_t>() : nullptr;
        return number ? *number : 0;
    }

    bool isCompany() const { return (flags() & person_flags::kShowAsMask) == person_flags::kShowAsCompany; }

    bool hasNames() const {
        for (const auto part :
             {property::kTitle, property::kFirst, property::kMiddle, property::kLast, property::kSuffix}) {
            if (!text(part).empty()) {
                return true;
            }
        }
        return false;
    }

    CardLine& add(const Rule& rule, std::string value) {
        CardLine& line = lines_.emplace_back();
        line.rule = &rule;
        line.name = rule.spelling.empty() ? rule.name : rule.spelling;
        line.value = std::move(value);
        line.property = rule.property;
        return line;
    }

    void write(const Rule& rule) {
        switch (rule.shape) {
        case Shape::name:
            add(rule, escape(text(property::kLast)) + ';' + escape(text(property::kFirst)) + ';' +
                          escape(text(property::kMiddle)) + ';' + escape(text(property::kTitle)) + ';' +
                          escape(text(property::kSuffix)));
            break;
        case Shape::fullName:
            add(rule, escape(shownName(card_)));
            break;
        case Shape::organization:
            writeOrganization(rule);
            break;
        case Shape::text:
            if (const std::string value = text(rule.property); !value.empty()) {
                add(rule, escape(value));
            }
            break;
        case Shape::day:
            if (const Value* value = find(rule.property)) {
                writeDay(rule, *value);
            }
            break;
        case Shape::picture:
            writePicture(rule);
            break;
        case Shape::company:
            if (isCompany()) {
                add(rule, "COMPANY");
            } else if (!hasNames() && !text(property::kOrganization).empty()) {
                add(rule, "PERSON"); // else a reader would take it for a company
            }
            break;
        case Shape::nameOrder:
            if (flags() & person_flags::kLastNameFirst) {
                add(rule, "LASTFIRST");
            } else if (flags() & person_flags::kFirstNameFirst) {
                add(rule, "FIRSTLAST");
            }
            break;
        case Shape::messaging:
            for (const MessagingService& service : messagingServices()) {
                if (!service.property.empty()) {
                    writeEntries(rule, service.property, service.name);
                }
            }
            writeEntries(rule, rule.property);
            break;
        default:
            writeEntries(rule, rule.property);
        }
    }

    void writeOrganization(const Rule& rule) {
        const std::string department = text(property::kDepartment);
        const std::string organization = text(property::kOrganization);
        if (!organization.empty() || !department.empty()) {
            add(rule, escape(organization) + (department.empty() ? "" : ';' + escape(department)));
        }
    }

    CardLine* writeDay(const Rule& rule, const Value& date) {
        const auto day = dayText(date);
        if (!day) {
            return nullptr;
        }
        CardLine& line = add(rule, *day);
        const std::string noYear = std::to_string(kNoYear);
        if (day->starts_with(noYear)) {
            line.params = ";X-APPLE-OMIT-YEAR=" + noYear;
        }
        line.params += ";value=date";
        return &line;
    }

    void writePicture(const Rule& rule) {
        const Value* value = find(rule.property);
        const auto* bytes = value ? value->as<Bytes>() : nullptr;
        if (!bytes || bytes->empty()) {
            return;
        }
        CardLine& line = add(rule, pictures_ ? encodeBase64(*bytes) : std::string());
        line.params = ";ENCODING=b";
        const std::string_view data(reinterpret_cast<const char*>(bytes->data()), bytes->size());
        for (const PictureType& type : kPictureTypes) {
            if (data.starts_with(type.start)) {
                line.params.append(";TYPE=").append(type.name);
                break;
            }
        }
    }

    // The lines of a list; [service] is the one at which all its names are.
    void writeEntries(const Rule& rule, std::string_view property, std::string_view service = {}) {
        const Value* value = find(property);
        const auto* list = value ? value->as<MultiValue>() : nullptr;
        if (!list) {
            return;
        }
        for (std::size_t at = 0; at < list->entries.size(); ++at) {
            const Entry& entry = list->entries[at];
            const bool labelled = rule.use == Use::beside && rule.shape != Shape::messagingNames;
            if (labelled && !sameLabel(entry.label, rule.label)) {
                continue;
            }
            CardLine* line = writeValue(rule, entry.value, service);
            if (!line) {
                continue;
            }
            line->property = property;
            line->entry = at;
            line->preferred = !list->primary.empty() && entry.identifier == list->primary;
            if (labelled) {
                return; // such a line holds one value
            }
            writeLabel(rule, entry.label, *line);
        }
    }

    static void writeLabel(const Rule& rule, const std::string& label, CardLine& line) {
        line.types = writtenTypes(rule, label);
        if (line.types.empty() && label != defaultLabel(rule)) {
            line.label = label;
        }
    }

    CardLine* writeValue(const Rule& rule, const Value& value, std::string_view service) {
        if (const auto* string = value.as<std::string>()) {
            if (rule.shape == Shape::messaging) {
                return &writeMessaging(rule, service, *string);
            }
            return rule.shape == Shape::messagingNames
                       ? nullptr
                       : &add(rule, rule.shape == Shape::uris ? escapeUri(*string) : escape(*string));
        }
        const auto* fields = value.as<Dictionary>();
        if (!fields) {
            return writeDay(rule, value); // nothing but days is left
        }
        const auto field = [&](std::string_view name) {
            const auto found = fields->find(std::string(name));
            const auto* string = found == fields->end() ? nullptr : found->second.as<std::string>();
            return string ? *string : std::string();
        };
        if (rule.shape == Shape::addresses) {
            CardLine& line = add(rule, ";;" + escape(field("Street")) + ';' + escape(field("City")) + ';' +
                                           escape(field("State")) + ';' + escape(field("ZIP")) + ';' +
                                           escape(field("Country")));
            line.country = field("CountryCode");
            return &line;
        }
        if (rule.shape == Shape::profiles) {
            CardLine& line = add(rule, escapeUri(field(kSocialProfileUrl)));
            line.params = parameter("type", field(kSocialProfileService)) +
                          parameter("x-user", field(kSocialProfileUsername)) +
                          parameter("x-userid", field(kSocialProfileIdentifier));
            return &line;
        }
        const std::string user = field(kInstantMessageUsername);
        if (rule.shape == Shape::messagingNames) {
            return field(kInstantMessageService) == rule.label ? &add(rule, escape(user)) : nullptr;
        }
        return &writeMessaging(rule, field(kInstantMessageService), user);
    }

    static std::string parameter(const std::string& name, const std::string& value) {
        return value.empty() ? std::string() : renderParams({{name, {value}}});
    }

    CardLine& writeMessaging(const Rule& rule, std::string_view service, std::string_view user) {
        CardLine& line = add(rule, escapeUri(messagingUri(service, user)));
        if (!isNamedByScheme(service)) {
            line.params = parameter("X-SERVICE-TYPE", std::string(service));
        }
        return line;
    }

    void writeGroup() {
        const auto add = [this](std::string name, std::string value, std::string_view property) {
            CardLine& line = lines_.emplace_back();
            line.name = std::move(name);
            line.value = std::move(value);
            line.property = property;
        };
        const std::string name = escape(text(property::kGroupName));
        add("N", name + ";;;;", property::kGroupName);
        add("FN", name, property::kGroupName);
        add("X-ADDRESSBOOKSERVER-KIND", "group", {});
        for (const std::string& member : card_.memberUids) {
            add("X-ADDRESSBOOKSERVER-MEMBER", escapeUri(member), kMemberUnit);
            lines_.back().entry = static_cast<std::size_t>(&member - card_.memberUids.data());
        }
    }

    const Card& card_;
    bool pictures_;
    std::vector<CardLine> lines_;
};

} // namespace

std::vector<CardLine> cardLines(const Card& card, bool pictures) {
    return Lines(card, pictures).take();
}

std::string shownName(const Card& card) {
    return displayName(CardView(card));
}

bool isNamedByScheme(std::string_view service) {
    const auto services = messagingServices();
    return !service.empty() && service != "x-apple" &&
           std::all_of(service.begin(), service.end(),
                       [](char byte) { return (byte >= 'a' && byte <= 'z') || byte == '-'; }) &&
           std::none_of(services.begin(), services.end(),
                        [&](const MessagingService& each) { return each.scheme == service; });
}

std::string messagingUri(std::string_view service, std::string_view user) {
    std::string uri = "x-apple";
    if (isNamedByScheme(service)) {
        uri = service;
    }
    for (const MessagingService& each : messagingServices()) {
        if (each.name == service) {
            uri = each.scheme;
        }
    }
    // Some programs put slashes there, which readers leave out.
    return uri.append(user.starts_with("//") ? "://" : ":").append(user);
}

std::string_view matchedValue(const CardLine& line) {
    return line.property == property::kImage ? std::string_view() : std::string_view(line.value);
}

std::string GroupNames::renamed(const std::string& group) {
    if (group.empty()) {
        return group;
    }
    const std::string upper = upperCase(group);
    std::string& name = names_[upper];
    if (name.empty()) {
        const bool numbered =
            upper.starts_with("ITEM") && upper.find_first_not_of("0123456789", 4) == std::string::npos;
        name = numbered ? fresh() : group;
    }
    return name;
}

std::string GroupNames::fresh() {
    std::string name;
    do {
        name = "item" + std::to_string(++last_);
    } while (taken_.contains(upperCase(name)));
    return name;
}

void GroupNames::take(const std::string& name) {
    taken_.insert(upperCase(name));
}

void GroupNames::rename(const std::string& group, const std::string& name) {
    names_[upperCase(group)] = name;
}

} // namespace addressbook::vcard

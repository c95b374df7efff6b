#include "frameworks/AddressBook/vcard/card_lines.h"

#include "frameworks/AddressBook/values/display_name.h"
#include "frameworks/AddressBook/vcard/content_line.h"
#include "frameworks/AddressBook/vcard/dates.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/labels.h"
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
    explicit Lines(const Card& card) : card_(card) {}

    std::vector<CardLine> take() {
        if (card_.kind == Kind::group) {
            writeGroup();
        } else {
            for (const Rule& rule : rules()) {
                if (rule.use == Use::written) {
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
        lines_.push_back({std::string(rule.spelling.empty() ? rule.name : rule.spelling),
                          {},
                          std::move(value),
                          rule.property,
                          0,
                          {},
                          {},
                          {}});
        return lines_.back();
    }

    void write(const Rule& rule) {
        switch (rule.shape) {
        case Shape::name:
            add(rule, escape(text(property::kLast)) + ';' + escape(text(property::kFirst)) + ';' +
                          escape(text(property::kMiddle)) + ';' + escape(text(property::kTitle)) + ';' +
                          escape(text(property::kSuffix)));
            break;
        case Shape::fullName:
            add(rule, escape(displayName(CardView(card_))));
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
                if (const auto* date = value->as<Date>()) {
                    writeDay(rule, *date);
                }
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
        default:
            writeEntries(rule);
        }
    }

    void writeOrganization(const Rule& rule) {
        const std::string department = text(property::kDepartment);
        const std::string organization = text(property::kOrganization);
        if (!organization.empty() || !department.empty()) {
            add(rule, escape(organization) + ';' + escape(department));
        }
    }

    CardLine* writeDay(const Rule& rule, Date date) {
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
        CardLine& line = add(rule, encodeBase64(*bytes));
        line.params = ";ENCODING=b";
        const std::string_view data(reinterpret_cast<const char*>(bytes->data()), bytes->size());
        for (const PictureType& type : kPictureTypes) {
            if (data.starts_with(type.start)) {
                line.params.append(";TYPE=").append(type.name);
                break;
            }
        }
    }

    void writeEntries(const Rule& rule) {
        const Value* value = find(rule.property);
        const auto* list = value ? value->as<MultiValue>() : nullptr;
        if (!list) {
            return;
        }
        for (std::size_t at = 0; at < list->entries.size(); ++at) {
            const Entry& entry = list->entries[at];
            CardLine* line = writeValue(rule, entry.value);
            if (!line) {
                continue;
            }
            line->entry = at;
            writeLabel(rule, entry.label, *line);
            if (list->primary.empty() ? at == 0 : entry.identifier == list->primary) {
                line->params += ";type=pref";
            }
        }
    }

    static void writeLabel(const Rule& rule, const std::string& label, CardLine& line) {
        if (rule.property == property::kEmail) {
            line.params += ";type=INTERNET";
        }
        const bool labelOnly = rule.shape == Shape::days || rule.shape == Shape::profiles ||
                               rule.property == property::kRelatedNames;
        std::vector<std::string_view> types;
        if (!labelOnly) {
            types = typesFor(label, rule.shape == Shape::telephones ? Entries::telephones : Entries::any);
        }
        for (const std::string_view type : types) {
            line.params.append(";type=").append(type);
        }
        if (types.empty()) {
            line.label = label;
        }
    }

    CardLine* writeValue(const Rule& rule, const Value& value) {
        if (const auto* string = value.as<std::string>()) {
            return &add(rule, escape(*string));
        }
        if (const auto* date = value.as<Date>()) {
            return writeDay(rule, *date);
        }
        const auto* fields = value.as<Dictionary>();
        if (!fields) {
            return nullptr;
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
            CardLine& line = add(rule, escape(field(kSocialProfileUrl)));
            line.params = parameter("type", field(kSocialProfileService)) +
                          parameter("x-user", field(kSocialProfileUsername)) +
                          parameter("x-userid", field(kSocialProfileIdentifier));
            return &line;
        }
        return &writeMessaging(rule, field(kInstantMessageService), field(kInstantMessageUsername));
    }

    static std::string parameter(const std::string& name, const std::string& value) {
        return value.empty() ? std::string() : renderParams({{name, {value}}});
    }

    CardLine& writeMessaging(const Rule& rule, const std::string& service, const std::string& user) {
        std::string scheme = "x-apple";
        for (const MessagingService& each : messagingServices()) {
            if (each.name == service) {
                scheme = each.scheme;
            }
        }
        CardLine& line = add(rule, scheme + ':' + escape(user));
        line.params = parameter("X-SERVICE-TYPE", service);
        return line;
    }

    void writeGroup() {
        const std::string name = escape(text(property::kGroupName));
        lines_.push_back({"N", {}, name + ";;;;", property::kGroupName, 0, {}, {}, {}});
        lines_.push_back({"FN", {}, name, property::kGroupName, 0, {}, {}, {}});
        lines_.push_back({"X-ADDRESSBOOKSERVER-KIND", {}, "group", {}, 0, {}, {}, {}});
        for (const std::string& member : card_.memberUids) {
            lines_.push_back({"X-ADDRESSBOOKSERVER-MEMBER", {}, "urn:uuid:" + member, {}, 0, {}, {}, {}});
        }
    }

    const Card& card_;
    std::vector<CardLine> lines_;
};

} // namespace

std::vector<CardLine> cardLines(const Card& card) {
    return Lines(card).take();
}

std::string_view matchedValue(const CardLine& line) {
    return line.property == property::kImage ? std::string_view() : std::string_view(line.value);
}

std::string GroupNames::renamed(const std::string& group) {
    if (group.empty()) {
        return group;
    }
    std::string& name = names_[upperCase(group)];
    if (name.empty()) {
        name = fresh();
    }
    return name;
}

std::string GroupNames::fresh() {
    return "item" + std::to_string(++last_);
}

} // namespace addressbook::vcard

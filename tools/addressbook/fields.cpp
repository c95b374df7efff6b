#include "tools/addressbook/fields.h"

#include "frameworks/AddressBook/values/calendar.h"
#include "frameworks/AddressBook/values/display_name.h"
#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/vcard.h"
#include "tools/addressbook/output.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>

namespace addressbook::tool {

namespace {

struct Row {
    std::string_view name, property;
};
constexpr std::array kFields{
    Row{"id", ""},
    Row{"name", ""},
    Row{"groups", ""},
    Row{"title", property::kTitle},
    Row{"firstname", property::kFirst},
    Row{"middlename", property::kMiddle},
    Row{"lastname", property::kLast},
    Row{"suffix", property::kSuffix},
    Row{"nickname", property::kNickname},
    Row{"maidenname", property::kMaidenName},
    Row{"phoneticfirst", property::kFirstPhonetic},
    Row{"phoneticmiddle", property::kMiddlePhonetic},
    Row{"phoneticlast", property::kLastPhonetic},
    Row{"organization", property::kOrganization},
    Row{"department", property::kDepartment},
    Row{"jobtitle", property::kJobTitle},
    Row{"phones", property::kPhone},
    Row{"emails", property::kEmail},
    Row{"addresses", property::kAddress},
    Row{"urls", property::kUrls},
    Row{"homepage", property::kHomePage},
    Row{"calendars", property::kCalendarUris},
    Row{"birthday", property::kBirthday},
    Row{"dates", property::kOtherDates},
    Row{"related", property::kRelatedNames},
    Row{"aim", property::kAim},
    Row{"jabber", property::kJabber},
    Row{"msn", property::kMsn},
    Row{"yahoo", property::kYahoo},
    Row{"icq", property::kIcq},
    Row{"messaging", property::kInstantMessage},
    Row{"profiles", property::kSocialProfile},
    Row{"note", property::kNote},
    Row{"flags", property::kPersonFlags},
    Row{"created", property::kCreation},
    Row{"modified", property::kModification},
};

std::string join(const std::vector<std::string>& parts, std::string_view separator) {
    std::string joined;
    for (const std::string& part : parts) {
        if (!part.empty()) {
            joined.append(joined.empty() ? "" : separator).append(part);
        }
    }
    return joined;
}

std::string dateText(FloatingDate date) {
    const double seconds = std::floor(date.seconds + kReferenceDate);
    if (!(std::fabs(seconds) < 1e12)) {
        return {};
    }
    const auto time = static_cast<std::time_t>(seconds);
    std::tm parts{};
    gmtime_r(&time, &parts); // whose clock never changes either
    std::array<char, 64> text{};
    // Dates without a time are stored as noon; the year 1604 stands for no year.
    const bool day = parts.tm_hour == 12 && parts.tm_min == 0 && parts.tm_sec == 0;
    const bool noYear = parts.tm_year + 1900 == 1604;
    const char* format = noYear ? "--%m-%d" : day ? "%Y-%m-%d" : "%Y-%m-%d %H:%M:%S";
    return std::strftime(text.data(), text.size(), format, &parts) ? text.data() : std::string();
}

std::string dictionaryText(const Dictionary& fields) {
    const auto field = [&](std::string_view key) {
        const auto found = fields.find(std::string(key));
        return found == fields.end() ? std::string() : valueText(found->second);
    };
    if (fields.contains(std::string(vcard::kInstantMessageUsername))) {
        return join({field(vcard::kInstantMessageService), field(vcard::kInstantMessageUsername)}, ": ");
    }
    std::vector<std::string> parts{field("Street"), join({field("ZIP"), field("City")}, " "), field("State"),
                                   field("Country")};
    for (const auto& [key, value] : fields) {
        if (key != "Street" && key != "ZIP" && key != "City" && key != "State" && key != "Country" &&
            key != "CountryCode") {
            parts.push_back(valueText(value));
        }
    }
    return join(parts, ", ");
}

// A record in the store, for displayName().
class StoredRecord final : public RecordView {
  public:
    StoredRecord(const Store& store, const RecordRef& record) : store_(store), record_(record) {}
    Kind kind() const override { return record_.kind; }
    const Value& value(std::string_view property) const override {
        return value_ = store_.value(record_.row, property);
    }

  private:
    const Store& store_;
    const RecordRef& record_;
    mutable Value value_;
};

std::string text(const Store& store, const RecordRef& record, std::string_view property) {
    return valueText(store.value(record.row, property));
}

} // namespace

std::vector<Field> allFields(const Store& store) {
    return allFields(store.definitions());
}

std::vector<Field> allFields(const std::vector<PropertyDefinition>& definitions) {
    std::vector<Field> fields;
    fields.reserve(kFields.size());
    for (const Row& row : kFields) {
        fields.push_back({std::string(row.name), std::string(row.property)});
    }
    for (const PropertyDefinition& own : definitions) {
        if (own.kind == Kind::person) {
            fields.push_back({own.name, own.name});
        }
    }
    return fields;
}

std::string friendlyName(const std::vector<Field>& fields, const std::string& property) {
    if (property == property::kGroupName) {
        return "name";
    }
    if (property == property::kImage) {
        return "picture";
    }
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [&](const Field& field) { return field.property == property; });
    return found == fields.end() ? property : found->name;
}

std::size_t distance(std::string_view left, std::string_view right) {
    std::vector<std::size_t> row(right.size() + 1);
    for (std::size_t at = 0; at < row.size(); ++at) {
        row[at] = at;
    }
    for (std::size_t line = 0; line < left.size(); ++line) {
        std::size_t diagonal = row[0];
        row[0] = line + 1;
        for (std::size_t at = 0; at < right.size(); ++at) {
            const std::size_t above = row[at + 1];
            row[at + 1] = std::min({above + 1, row[at] + 1, diagonal + (left[line] == right[at] ? 0 : 1)});
            diagonal = above;
        }
    }
    return row.back();
}

std::vector<Field> parseFields(std::string_view list, const Store& store) {
    const std::vector<Field> known = allFields(store);
    std::vector<Field> fields;
    for (std::size_t start = 0; start <= list.size();) {
        const std::size_t comma = std::min(list.find(',', start), list.size());
        std::string_view name = list.substr(start, comma - start);
        start = comma + 1;
        while (name.starts_with(' ')) {
            name.remove_prefix(1);
        }
        while (name.ends_with(' ')) {
            name.remove_suffix(1);
        }
        const std::string wanted = fold(name);
        auto found = std::find_if(known.begin(), known.end(), [&](const Field& field) {
            return fold(field.name) == wanted || (!field.property.empty() && fold(field.property) == wanted);
        });
        if (found != known.end()) {
            fields.push_back(*found);
            continue;
        }
        const auto nearest =
            std::min_element(known.begin(), known.end(), [&](const Field& left, const Field& right) {
                return distance(wanted, fold(left.name)) < distance(wanted, fold(right.name));
            });
        std::string message = "no field is named \"" + std::string(name) + '"';
        if (distance(wanted, fold(nearest->name)) <= 3) {
            message += "; did you mean " + nearest->name + '?';
        } else {
            message += '.';
        }
        message += " Fields: ";
        for (const Field& field : known) {
            message += (&field == &known.front() ? "" : ", ") + field.name;
        }
        throw std::invalid_argument(message);
    }
    return fields;
}

std::string displayName(const Store& store, const RecordRef& record) {
    return addressbook::displayName(StoredRecord(store, record));
}

std::string fieldText(const Store& store, const RecordRef& record, const Field& field) {
    if (field.name == "id") {
        return record.uid;
    }
    if (field.name == "name") {
        return displayName(store, record);
    }
    if (field.name == "groups") {
        std::vector<std::string> names;
        for (const RowId group : store.parents(record.row)) {
            names.push_back(valueText(store.value(group, property::kGroupName)));
        }
        return join(names, "; ");
    }
    return text(store, record, field.property);
}

std::string valueText(const Value& value) {
    if (const auto* string = value.as<std::string>()) {
        return *string;
    }
    if (const auto* number = value.as<std::int64_t>()) {
        return std::to_string(*number);
    }
    if (const auto* real = value.as<double>()) {
        std::array<char, 40> text{};
        std::snprintf(text.data(), text.size(), "%.15g", *real);
        return text.data();
    }
    if (const auto* date = value.as<Date>()) {
        return dateText(clockAt(*date).value_or(FloatingDate{date->seconds}));
    }
    if (const auto* day = value.as<FloatingDate>()) {
        return dateText(*day);
    }
    if (const auto* bytes = value.as<Bytes>()) {
        return std::to_string(bytes->size()) + " bytes";
    }
    if (const auto* fields = value.as<Dictionary>()) {
        return dictionaryText(*fields);
    }
    std::vector<std::string> parts;
    if (const auto* array = value.as<Array>()) {
        for (const Value& each : *array) {
            parts.push_back(valueText(each));
        }
    }
    if (const auto* list = value.as<MultiValue>()) {
        for (const Entry& entry : list->entries) {
            parts.push_back(valueText(entry.value));
        }
    }
    if (const auto* date = value.as<DateComponents>()) {
        for (const auto& part : {date->year, date->month, date->day}) {
            parts.push_back(part ? std::to_string(*part) : "-");
        }
        return join(parts, "-");
    }
    return join(parts, "; ");
}

std::string labelText(std::string_view label) {
    constexpr std::string_view kStart = "_$!<", kEnd = ">!$_";
    if (label.starts_with(kStart) && label.ends_with(kEnd) && label.size() > kStart.size() + kEnd.size()) {
        label = label.substr(kStart.size(), label.size() - kStart.size() - kEnd.size());
    }
    return std::string(label);
}

RecordRef findRecord(const Store& store, const std::string& id) {
    if (auto record = store.find(id)) {
        return *record;
    }
    if (id.find(':') == std::string::npos) {
        for (const char* suffix : {":ABPerson", ":ABGroup"}) {
            for (const std::string& uuid : {id, vcard::uuidOf(id)}) {
                if (auto record = store.find(uuid + suffix)) {
                    return *record;
                }
            }
        }
    }
    throw Failure("no person or group has the id " + id);
}

} // namespace addressbook::tool

#include "frameworks/AddressBook/csv/person.h"

#include "frameworks/AddressBook/csv/labels.h"
#include "frameworks/AddressBook/values/calendar.h"
#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/values/uid.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <tuple>

namespace addressbook::csv {
namespace {

// The parts of a list in one cell.
std::vector<std::string> parts(std::string_view text, std::string_view separator) {
    std::vector<std::string> found;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(separator, start), text.size());
        if (const std::string_view part = trim(text.substr(start, end - start)); !part.empty()) {
            found.emplace_back(part);
        }
        start = end + separator.size();
    }
    return found;
}

template <typename Number>
bool reads(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

int daysIn(int year, int month) {
    constexpr std::array kDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return month == 2 && leap ? 29 : kDays[static_cast<std::size_t>(month) - 1];
}

// 1980-03-22, --03-22, 22.3.1980, 3/22/1980 with or without a time behind it.
class DateReader {
  public:
    DateReader(std::string_view text, DateOrder order) : order_(order) {
        text = trim(text);
        yearless_ = text.starts_with("--");
        text = text.substr(0, text.find_first_of(" T"));
        while (!text.empty() && numbers_.size() < 4) {
            const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
            int number = 0;
            if (digits > 0 && reads(text.substr(0, digits), number)) {
                numbers_.push_back(number);
                widths_.push_back(digits);
            }
            if (digits < text.size() && text[digits] != '-' && text[digits] != '/' && text[digits] != '.') {
                numbers_.clear();
                return;
            }
            separator_ = digits < text.size() ? text[digits] : separator_;
            text.remove_prefix(std::min(digits + 1, text.size()));
        }
    }

    // Outlook's word for no date.
    bool isNone() const {
        return numbers_.size() == 3 &&
               std::all_of(numbers_.begin(), numbers_.end(), [](int n) { return n == 0; });
    }
    bool isAmbiguous() const { return ambiguous_; }

    std::optional<Value> read() {
        if (yearless_ && numbers_.size() == 2) {
            return day(kNoYear, numbers_[0], numbers_[1]);
        }
        if (numbers_.size() == 1 && widths_[0] == 8) {
            return day(numbers_[0] / 10000, numbers_[0] / 100 % 100, numbers_[0] % 100);
        }
        if (numbers_.size() != 3) {
            return std::nullopt;
        }
        if (widths_[0] == 4) {
            return day(numbers_[0], numbers_[1], numbers_[2]);
        }
        if (widths_[2] != 4) {
            return std::nullopt; // a year of two digits says too little
        }
        bool dayFirst = separator_ == '.' || order_ == DateOrder::dayFirst;
        if (separator_ != '.') {
            ambiguous_ = numbers_[0] <= 12 && numbers_[1] <= 12 && numbers_[0] != numbers_[1];
            dayFirst = numbers_[0] > 12 || (dayFirst && numbers_[1] <= 12);
        }
        return dayFirst ? day(numbers_[2], numbers_[1], numbers_[0])
                        : day(numbers_[2], numbers_[0], numbers_[1]);
    }

  private:
    static std::optional<Value> day(int year, int month, int number) {
        if (year < 1 || month < 1 || month > 12 || number < 1 || number > daysIn(year, month)) {
            return std::nullopt;
        }
        return noonOf(year, {month, number});
    }

    DateOrder order_;
    bool yearless_ = false, ambiguous_ = false;
    std::vector<int> numbers_;
    std::vector<std::size_t> widths_;
    char separator_ = '-';
};

// An entry while its cells come together.
struct Draft {
    std::string label;
    std::string value;
    std::map<std::string, std::map<std::size_t, std::string>> fields; // key -> parts in their order
    std::map<std::string, std::string> fallbacks;
    bool primary = false;
};

class PersonReader {
  public:
    PersonReader(std::span<const PropertyDefinition> own, DateOrder order) : own_(own), order_(order) {}

    Person run(const Row& row, std::span<const Column> columns) {
        for (std::size_t at = 0; at < row.cells.size(); ++at) {
            if (!trim(row.cells[at]).empty()) {
                if (at >= columns.size()) {
                    problem("there are " + std::to_string(row.cells.size()) + " cells and " +
                            std::to_string(columns.size()) + " columns");
                    break;
                }
                take(columns[at], row.cells[at]);
            }
        }
        for (const auto& [property, drafts] : lists_) {
            finish(property, drafts);
        }
        splitFullName();
        return std::move(person_);
    }

  private:
    void problem(std::string text) { person_.problems.push_back(std::move(text)); }

    int typeOf(const std::string& property) const {
        for (const PropertyDefinition& one : own_) {
            if (one.kind == Kind::person && one.name == property) {
                return one.type;
            }
        }
        return builtInType(Kind::person, property);
    }

    void take(const Column& column, const std::string& cell) {
        switch (column.role) {
        case Role::ignored:
            return;
        case Role::identifier:
            person_.id = trim(cell);
            return;
        case Role::fullName:
            fullName_ = fullName_.empty() ? std::string(trim(cell)) : fullName_;
            return;
        case Role::groups:
            takeGroups(cell);
            return;
        case Role::label:
            draft(column).label = trim(cell);
            return;
        case Role::value:
            break;
        }
        const int type = typeOf(column.property);
        if ((type & kMultiValue) == 0) {
            if (auto value = valueOf(static_cast<Type>(type), cell, column.property)) {
                person_.values.emplace(column.property, std::move(*value));
            }
            return;
        }
        Draft& entry = draft(column);
        if (column.fallback) {
            entry.fallbacks[column.field] = cell;
        } else if (!column.field.empty()) {
            entry.fields[column.field][column.part] = cell;
        } else {
            entry.value = cell;
        }
    }

    Draft& draft(const Column& column) {
        std::vector<std::pair<std::tuple<std::size_t, std::string>, Draft>>& drafts = lists_[column.property];
        const std::tuple<std::size_t, std::string> key{column.entry, column.label};
        const auto found =
            std::find_if(drafts.begin(), drafts.end(), [&](const auto& each) { return each.first == key; });
        if (found != drafts.end()) {
            return found->second;
        }
        Draft fresh;
        fresh.label = column.label;
        return drafts.emplace_back(key, std::move(fresh)).second;
    }

    // Google's own groups have a star before their names.
    void takeGroups(std::string_view cell) {
        const bool between = cell.find(kBetween) != std::string_view::npos;
        for (std::string& name : parts(cell, between ? kBetween : ";")) {
            if (!name.starts_with("* ")) {
                person_.groups.push_back(std::move(name));
            }
        }
    }

    std::optional<Value> valueOf(Type type, const std::string& cell, const std::string& property) {
        const std::string_view text = trim(cell);
        const auto refuse = [&](const char* expected) {
            problem(property + ": expected " + expected + ", not \"" + std::string(text) + '"');
            return std::nullopt;
        };
        switch (type) {
        case Type::string:
            return cell;
        case Type::integer:
            if (std::int64_t number = 0; reads(text, number)) {
                return number;
            }
            return refuse("a whole number");
        case Type::real:
            if (double number = 0; reads(text, number)) {
                return number;
            }
            return refuse("a number");
        case Type::date: {
            DateReader reader(text, order_);
            if (reader.isNone()) {
                return std::nullopt;
            }
            auto value = reader.read();
            person_.ambiguousDate = person_.ambiguousDate || reader.isAmbiguous();
            return value ? value : refuse("a date as 1980-03-22");
        }
        default:
            return refuse("no cell of CSV");
        }
    }

    void finish(const std::string& property,
                const std::vector<std::pair<std::tuple<std::size_t, std::string>, Draft>>& drafts) {
        const auto type = static_cast<Type>(typeOf(property) & ~kMultiValue);
        MultiValue list;
        for (const auto& [key, draft] : drafts) {
            std::string label = draft.label;
            const bool primary = label.starts_with("* ");
            label = labelFrom(primary ? label.substr(2) : label);
            if (label.empty()) {
                label = defaultLabel(property);
            }
            bool first = true;
            for (Value& value : valuesOf(property, type, draft)) {
                list.entries.push_back({newUuid(), label, std::move(value)});
                if (primary && first && list.entries.size() > 1) { // the first one is it in any case
                    list.primary = list.entries.back().identifier;
                }
                first = false;
            }
        }
        if (!list.entries.empty()) {
            person_.values.emplace(property, std::move(list));
        }
    }

    static std::string defaultLabel(std::string_view property) {
        return property == property::kUrls ? "_$!<HomePage>!$_"
               : property == property::kPhone || property == property::kEmail ||
                       property == property::kAddress
                   ? "_$!<Home>!$_"
                   : "_$!<Other>!$_";
    }

    // A cell may hold several values of one label.
    std::vector<Value> valuesOf(const std::string& property, Type type, const Draft& draft) {
        std::vector<Value> values;
        if (type == Type::dictionary) {
            if (Dictionary fields = fieldsOf(draft); !fields.empty()) {
                values.emplace_back(std::move(fields));
            }
            return values;
        }
        const bool several = draft.value.find(kBetween) != std::string::npos;
        for (const std::string& part : several ? parts(draft.value, kBetween) : std::vector{draft.value}) {
            if (part.empty()) {
                continue;
            }
            if (auto value = valueOf(type, part, property)) {
                values.push_back(std::move(*value));
            }
        }
        return values;
    }

    static Dictionary fieldsOf(const Draft& draft) {
        Dictionary fields;
        for (const auto& [key, texts] : draft.fields) {
            std::string text;
            for (const auto& [part, each] : texts) {
                text += (text.empty() ? "" : "\n") + each;
            }
            fields[key] = text;
        }
        if (fields.empty()) {
            for (const auto& [key, text] : draft.fallbacks) {
                fields[key] = text;
            }
        }
        return fields;
    }

    // "Berg, Ida" or "Ida Berg"; only where nothing else names the person.
    void splitFullName() {
        const std::array<std::string_view, 3> kNames{property::kFirst, property::kLast,
                                                     property::kOrganization};
        if (fullName_.empty() || std::any_of(kNames.begin(), kNames.end(), [&](std::string_view name) {
                return person_.values.contains(std::string(name));
            })) {
            return;
        }
        const std::size_t comma = fullName_.find(',');
        const std::size_t cut = comma != std::string::npos ? comma : fullName_.rfind(' ');
        std::string first = fullName_, last;
        if (cut != std::string::npos) {
            first = trim(
                std::string_view(fullName_).substr(comma != std::string::npos ? cut + 1 : 0,
                                                   comma != std::string::npos ? std::string::npos : cut));
            last = trim(comma != std::string::npos ? std::string_view(fullName_).substr(0, cut)
                                                   : std::string_view(fullName_).substr(cut + 1));
        }
        if (!first.empty()) {
            person_.values.emplace(property::kFirst, first);
        }
        if (!last.empty()) {
            person_.values.emplace(property::kLast, last);
        }
    }

    std::span<const PropertyDefinition> own_;
    DateOrder order_;
    Person person_;
    std::string fullName_;
    std::map<std::string, std::vector<std::pair<std::tuple<std::size_t, std::string>, Draft>>> lists_;
};

} // namespace

Person personFrom(const Row& row, std::span<const Column> columns, std::span<const PropertyDefinition> own,
                  DateOrder order) {
    return PersonReader(own, order).run(row, columns);
}

} // namespace addressbook::csv

// Random people written and read again are the same.

#include "frameworks/AddressBook/csv/layout.h"
#include "frameworks/AddressBook/csv/person.h"
#include "frameworks/AddressBook/csv/table.h"
#include "frameworks/AddressBook/values/calendar.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

namespace addressbook::csv {
namespace {

constexpr int kText = static_cast<int>(Type::string);

const std::vector<PropertyDefinition> kOwn{{Kind::person, "Shoe size", static_cast<int>(Type::integer)},
                                           {Kind::person, "Weight", static_cast<int>(Type::real)},
                                           {Kind::person, "Boats", kText + kMultiValue}};

class People {
  public:
    explicit People(unsigned seed) : random_(seed) {}

    std::map<std::string, Value> next() {
        std::map<std::string, Value> values;
        const auto give = [&](const std::string& property, int type) {
            if (chance(3)) {
                values[property] = value(property, type);
            }
        };
        for (const std::string_view name : builtInNames(Kind::person)) {
            const int type = builtInType(Kind::person, name);
            const auto base = static_cast<Type>(type & ~kMultiValue);
            if (name != property::kUid && name != property::kCreation && name != property::kModification &&
                base != Type::dateComponents) {
                give(std::string(name), type);
            }
        }
        for (const PropertyDefinition& one : kOwn) {
            give(one.name, one.type);
        }
        return values;
    }

  private:
    int number(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }
    bool chance(int of) { return number(of) == 0; }

    std::string text() {
        static const std::vector<std::string> kPieces{"a", "B",  ",",  ";",    "\"", "\"\"", "\n", "\r\n",
                                                      " ", "'",  "ø",  "漢",   "😀", "=",    "\t", "- 1 -",
                                                      "*", "\\", "\r", "sep=", "|",  "::",   "#",  "0"};
        std::string made = "x";
        for (int left = number(8); left > 0; --left) {
            made += kPieces[static_cast<std::size_t>(number(static_cast<int>(kPieces.size())))];
        }
        return made + "x";
    }
    Value date() { return noonOf(chance(4) ? kNoYear : 1 + number(9999), {1 + number(12), 1 + number(28)}); }
    Value single(const std::string& property, Type type) {
        switch (type) {
        case Type::integer:
            return std::int64_t{number(1000)} - 500;
        case Type::real:
            return number(1000) / 7.0;
        case Type::date:
            return date();
        case Type::dictionary:
            return dictionary(property);
        default:
            return text();
        }
    }
    Value dictionary(const std::string& property) {
        std::vector<std::string> keys;
        if (property == "Address") {
            keys = {"Street", "City", "State", "ZIP", "Country", "CountryCode"};
        } else if (property == "InstantMessage") {
            keys = {"InstantMessageService", "InstantMessageUsername"};
        } else {
            keys = {"serviceName", "username", "url", "userIdentifier"};
        }
        Dictionary fields{{keys.front(), text()}};
        for (const std::string& key : keys) {
            if (chance(2)) {
                fields[key] = text();
            }
        }
        return fields;
    }
    Value value(const std::string& property, int type) {
        const auto base = static_cast<Type>(type & ~kMultiValue);
        if ((type & kMultiValue) == 0) {
            return single(property, base);
        }
        static const std::vector<std::string> kLabels{"_$!<Home>!$_",    "_$!<Work>!$_",    "_$!<Other>!$_",
                                                      "_$!<HomeFAX>!$_", "_$!<WorkFAX>!$_", "_$!<Mobile>!$_",
                                                      "boat, \"red\"",   "_$!<Spouse>!$_",  "a  b"};
        MultiValue list;
        for (int left = 1 + number(4); left > 0; --left) {
            list.entries.push_back(
                {std::to_string(left),
                 kLabels[static_cast<std::size_t>(number(static_cast<int>(kLabels.size())))],
                 single(property, base)});
        }
        if (chance(2)) {
            list.primary = list.entries.back().identifier;
        }
        return list;
    }

    std::mt19937 random_;
};

// With places for identifiers, which are new at every reading.
Value comparable(Value value) {
    if (auto* list = value.as<MultiValue>()) {
        std::string primary;
        for (std::size_t at = 0; at < list->entries.size(); ++at) {
            if (at > 0 && list->entries[at].identifier == list->primary) {
                primary = std::to_string(at);
            }
            list->entries[at].identifier = std::to_string(at);
        }
        list->primary = primary;
    }
    return value;
}

TEST(CsvRoundTripTest, PeopleComeBack) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        People random(seed);
        std::vector<std::map<std::string, Value>> people;
        Layout layout(kOwn);
        for (int count = 0; count < 25; ++count) {
            people.push_back(random.next());
            people.back()["Note"] = "always something";
            layout.measure(people.back());
        }
        std::string file = line(layout.headers());
        const std::vector<std::string> groups{"Rowers; Oslo", "Chess"};
        for (std::size_t at = 0; at < people.size(); ++at) {
            file += line(layout.cells("id " + std::to_string(at), people[at],
                                      at % 3 == 0   ? groups
                                      : at % 3 == 1 ? std::vector<std::string>{groups.front()}
                                                    : std::vector<std::string>()));
        }
        std::istringstream input(file);
        TableReader reader(input);
        std::vector<Column> columns;
        for (const std::string& header : reader.next()->cells) {
            const auto column = columnNamed(header, kOwn);
            ASSERT_TRUE(column) << header;
            columns.push_back(*column);
        }
        for (std::size_t at = 0; at < people.size(); ++at) {
            SCOPED_TRACE(at);
            const Row* row = reader.next();
            ASSERT_NE(row, nullptr);
            const Person person = personFrom(*row, columns, kOwn, DateOrder::dayFirst);
            EXPECT_EQ(person.problems.size(), 0U);
            EXPECT_EQ(person.id, "id " + std::to_string(at));
            EXPECT_EQ(person.groups.size(), at % 3 == 0 ? 2U : at % 3 == 1 ? 1U : 0U);
            EXPECT_EQ(person.values.size(), people[at].size());
            for (const auto& [property, value] : people[at]) {
                const auto found = person.values.find(property);
                ASSERT_NE(found, person.values.end()) << property;
                EXPECT_TRUE(comparable(found->second) == comparable(value)) << property;
            }
        }
        EXPECT_EQ(reader.next(), nullptr);
    }
}

} // namespace
} // namespace addressbook::csv

#include "tests/model/comparison.h"

#include <chrono>
#include <gtest/gtest.h>
#include <ostream>
#include <tuple>
#include <utility>

// Arguments that nobody means well with, in every place of every function: the model says what they should be
// answered, and what may change; the rest of the address book must be as it was.

namespace model {
namespace {

// A call that succeeds with the book of fill(); words in <> stand for its identifiers.
struct GoodCall {
    const char* name;
    Arguments arguments;
};

const std::vector<GoodCall>& goodCalls() {
    static const std::vector<GoodCall> calls{
        {"KORU_Version", {"Long"}},
        {"KORU_Delete", {"<person>"}},
        {"KORU_Search", {"person", "phone", "home", "Street", "555-1234", "Equal", "expand"}},
        {"KORU_Search", {"person", "birthday", "", "", "86400", "WithinIntervalAroundToday"}},
        {"KORU_Search", {"person", "note", "", "", "Harbour", "ContainsSubStringCaseInsensitive"}},
        {"KORU_Search", {"person", "birthday", "", "", "1970-03-12", "GreaterThanOrEqual"}},
        {"KORU_OpenFirstRecord", {"person"}},
        {"KORU_OpenNextRecord", {"person"}},
        {"KORU_Open", {"<person>"}},
        {"KORU_New", {"group", "Harbour", "x"}},
        {"KORU_Save", {"x"}},
        {"KORU_CompareProperty", {"address", "Bristol", "<address>", "City"}},
        {"KORU_CompareProperty", {"birthday", "1970-03-12"}},
        {"KORU_CompareProperty", {"firstname", "Anne"}},
        {"KORU_GetValueForProperty", {"firstname", "person"}},
        {"KORU_OpenFirstMVProperty", {"phone", "person"}},
        {"KORU_GetValueForUID", {"address", "<address>", "City", "x"}},
        {"KORU_SetValueForProperty", {"firstname", "Eve", "person"}},
        {"KORU_SetValueForProperty", {"birthday", "1970-03-12", "person"}},
        {"KORU_SetValueForProperty", {"person flags", "ShowAsCompany", "person"}},
        {"KORU_SetValueForUID", {"address", "<address>", "Leeds", "City", "x"}},
        {"KORU_SetValueForUID", {"address", "<address>", "us", "CountryCode"}},
        {"KORU_SetValueForUID", {"phone", "<phone>", "555"}},
        {"KORU_SetValueForUID", {"dates", "<date>", "1970-03-12"}},
        {"KORU_GetLabelForUID", {"phone", "<phone>", "x"}},
        {"KORU_SetLabelForUID", {"phone", "<phone>", "Cottage", "x"}},
        {"KORU_DeleteValueForProperty", {"note", "person"}},
        {"KORU_DeleteValueForUID", {"address", "<address>", "City"}},
        {"KORU_AddPerson", {"<person>"}},
        {"KORU_RemovePerson", {"<person>"}},
        {"KORU_AddSubgroup", {"<subgroup>"}},
        {"KORU_RemoveSubgroup", {"<subgroup>"}},
        {"KORU_AddMV", {"phone", "555", "home", "x"}},
        {"KORU_AddMV", {"dates", "1970-03-12", "anniversary"}},
        {"KORU_AddAddress", {"home", "1 Main St", "Bristol", "", "12345", "UK", "gb"}},
        {"KORU_GetLastError", {"NUM"}},
        {"KORU_AddCustomField", {"person", "Rating"}},
        {"KORU_RemoveCustomField", {"person", "Rating"}},
        {"KORU_SetCustomField", {"person", "Customer", "7"}},
        {"KORU_GetCustomField", {"person", "Customer"}},
        {"KORU_GetListOfValues", {"group", "members", "UID"}},
        {"KORU_ClearAll", {"<group>", "members", "0"}},
    };
    return calls;
}

std::string repeated(const std::string& text, std::size_t count) {
    std::string result;
    result.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

const std::string kHigh = "\xED\xA0\x80"; // U+D800, half of a pair
const std::string kLow = "\xED\xB0\x80";  // U+DC00
constexpr std::size_t kMillion = 1U << 20U;
constexpr std::size_t kThousands = 1U << 14U;

const std::vector<std::string>& hostileTexts() {
    static const std::vector<std::string> texts{
        "",
        kHigh,
        kLow,
        "a" + kHigh + "b",
        kLow + kHigh,
        repeated(kHigh, kThousands),
        std::string(1, '\0'),
        std::string("a\0b", 3),
        repeated(std::string(1, '\0'), kThousands),
        "\xEF\xBF\xBE"
        "swapped",
        "\xEF\xBB\xBFmarked",
        "\xEF\xBF\xBF",
        "%@%n%s%C",
        repeated("9", 400),
        "-" + repeated("9", 400),
        "' ; DROP TABLE record ; --",
        ".image",
        "\r\n",
        repeated("x", kMillion), // the last: what is stored of it makes every later call slower
    };
    return texts;
}

// The identifiers of the book below.
using Ids = std::map<std::string, std::string>;

// Two people, two groups, one in the other, and of each one that is deleted.
Ids fill(Comparison& comparison) {
    Ids ids;
    const auto call = [&](const char* name, const Arguments& arguments) {
        EXPECT_TRUE(comparison.make(functionNamed(name), arguments));
        return comparison.answer();
    };
    call("KORU_AddCustomField", {"person", "Customer"});
    for (const char* person : {"gone", "bystander", "person"}) {
        ids[person] = call("KORU_New", {"person"});
        call("KORU_SetValueForProperty", {"firstname", "Anne"});
        call("KORU_SetValueForProperty", {"note", "The Harbour"});
        call("KORU_SetValueForProperty", {"birthday", "1970-03-12"});
        call("KORU_SetCustomField", {"person", "Customer", "12345"});
        ids["phone"] = call("KORU_AddMV", {"phone", "555-1234", "home"});
        ids["address"] = call("KORU_AddAddress", {"home", "1 Main St", "Bristol", "", "12345", "UK", "gb"});
        ids["date"] = call("KORU_AddMV", {"dates", "25 December 2010", "anniversary"});
        call("KORU_Save", {});
    }
    for (const char* group : {"gone group", "subgroup", "group"}) {
        ids[group] = call("KORU_New", {"group", group});
        call("KORU_AddPerson", {ids["bystander"]});
        call("KORU_Save", {});
    }
    call("KORU_Open", {ids["group"]});
    call("KORU_AddSubgroup", {ids["subgroup"]});
    call("KORU_Save", {});
    call("KORU_Delete", {ids["gone"]});
    call("KORU_Delete", {ids["gone group"]});
    call("KORU_Search", {"person", "firstname", "", "", "Anne", "Equal"});
    return ids;
}

std::string named(const Ids& ids, const std::string& argument) {
    if (argument.size() > 2 && argument.front() == '<') {
        return ids.at(argument.substr(1, argument.size() - 2));
    }
    return argument;
}

// One function, in an address book of its own.
class Trial {
  public:
    explicit Trial(GoodCall good) : ids_(fill(comparison_)), good_(std::move(good)) {
        for (std::string& argument : good_.arguments) {
            argument = named(ids_, argument);
        }
        static const auto elsewhere = recordsElsewhere();
        std::tie(ids_["person elsewhere"], ids_["group elsewhere"]) = elsewhere;
    }

    [[nodiscard]] const Arguments& good() const { return good_.arguments; }

    // Everything that is no good in some place; identifiers among it.
    [[nodiscard]] std::vector<std::string> texts() const {
        std::vector<std::string> all;
        for (const auto& [name, id] : ids_) {
            all.push_back(id);
        }
        all.insert(all.end(), hostileTexts().begin(), hostileTexts().end());
        return all;
    }

    // The call with these arguments, a person and a group being current.
    bool make(const Arguments& arguments) {
        const auto start = std::chrono::steady_clock::now();
        const bool fine = comparison_.make(functionNamed("KORU_Open"), {ids_["group"]}) &&
                          comparison_.make(functionNamed("KORU_Open"), {ids_["person"]}) &&
                          comparison_.make(functionNamed(good_.name), arguments);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
        return fine;
    }

    // Whether everything is as it should be, before and after a save.
    bool saveAndLook() {
        return comparison_.books() && comparison_.make(functionNamed("KORU_Save"), {}) &&
               comparison_.databases();
    }

  private:
    Comparison comparison_{"hostile arguments"};
    Ids ids_;
    GoodCall good_;
};

class HostileArgumentsTest : public testing::TestWithParam<GoodCall> {};

TEST_P(HostileArgumentsTest, AreAnsweredAndChangeNothingElse) {
    for (std::size_t place = 0; place < GetParam().arguments.size(); ++place) {
        Trial trial(GetParam());
        ASSERT_TRUE(trial.make(trial.good()));
        for (const std::string& text : trial.texts()) {
            Arguments arguments = trial.good();
            arguments[place] = text;
            ASSERT_TRUE(trial.make(arguments)) << "argument " << place + 1;
        }
        ASSERT_TRUE(trial.saveAndLook()) << "argument " << place + 1;
    }
}

TEST_P(HostileArgumentsTest, InEveryPlaceAtOnce) {
    Trial trial(GetParam());
    for (const std::string& text : trial.texts()) {
        ASSERT_TRUE(trial.make(Arguments(trial.good().size(), text)));
    }
    ASSERT_TRUE(trial.saveAndLook());
}

INSTANTIATE_TEST_SUITE_P(All, HostileArgumentsTest, testing::ValuesIn(goodCalls()),
                         [](const testing::TestParamInfo<GoodCall>& one) {
                             return std::string(one.param.name).substr(5) + "_" + std::to_string(one.index);
                         });

void PrintTo(const GoodCall& call, std::ostream* out) {
    *out << call.name;
}

} // namespace
} // namespace model

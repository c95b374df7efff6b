// The name to show, rule by rule; lists, vCards and the framework all show this one.

#include "frameworks/AddressBook/values/display_name.h"

#include "frameworks/AddressBook/values/property.h"
#include "tests/store/builders.h"

#include <gtest/gtest.h>

namespace addressbook::test {
namespace {

namespace p = property;

Value list(std::string value) {
    MultiValue entries;
    entries.entries.push_back({"id", "home", std::move(value)});
    return entries;
}

std::string named(const std::map<std::string_view, Value>& given, Kind kind = Kind::person) {
    Values values;
    for (const auto& [property, value] : given) {
        values.emplace(property, value);
    }
    return displayName(MemoryRecord(kind, std::move(values)));
}

TEST(DisplayNameTest, APersonIsCalledByTheWholeName) {
    EXPECT_EQ(named({{p::kTitle, text("Dr.")},
                     {p::kFirst, text("Ida")},
                     {p::kMiddle, text("Maria")},
                     {p::kLast, text("Berg")},
                     {p::kSuffix, text("jun.")},
                     {p::kOrganization, text("Mill")}}),
              "Dr. Ida Maria Berg jun.");
}

TEST(DisplayNameTest, TheLastNameStandsFirstWhereTheRecordSaysSo) {
    const auto inOrder = [](std::int64_t flags) {
        return named({{p::kTitle, text("Dr.")},
                      {p::kFirst, text("Ida")},
                      {p::kMiddle, text("Maria")},
                      {p::kLast, text("Berg")},
                      {p::kPersonFlags, number(flags)}});
    };
    EXPECT_EQ(inOrder(person_flags::kLastNameFirst), "Dr. Berg Ida Maria");
    EXPECT_EQ(inOrder(person_flags::kFirstNameFirst), "Dr. Ida Maria Berg");
    EXPECT_EQ(inOrder(0), "Dr. Ida Maria Berg");
}

TEST(DisplayNameTest, ATitleAloneIsAName) {
    EXPECT_EQ(named({{p::kTitle, text("The Editor")}, {p::kOrganization, text("Mill")}}), "The Editor");
}

TEST(DisplayNameTest, ACompanyIsCalledByItsOrganization) {
    const Value company = number(person_flags::kShowAsCompany);
    EXPECT_EQ(named({{p::kFirst, text("Ida")}, {p::kOrganization, text("Mill")}, {p::kPersonFlags, company}}),
              "Mill");
    EXPECT_EQ(named({{p::kFirst, text("Ida")}, {p::kNickname, text("Flour")}, {p::kPersonFlags, company}}),
              "Ida");
    EXPECT_EQ(named({{p::kNickname, text("Flour")}, {p::kPersonFlags, company}}), "Flour");
}

TEST(DisplayNameTest, WhoHasNoNameIsCalledByTheFirstOfWhatElseIsKnown) {
    std::map<std::string_view, Value> known{{p::kPhone, list("555")}};
    EXPECT_EQ(named(known), "555");
    known[p::kEmail] = list("ida@example.org");
    EXPECT_EQ(named(known), "ida@example.org");
    known[p::kNickname] = text("Flour");
    EXPECT_EQ(named(known), "Flour");
    known[p::kOrganization] = text("Mill");
    EXPECT_EQ(named(known), "Mill");
    EXPECT_EQ(named({}), "");
    EXPECT_EQ(named({{p::kEmail, MultiValue()}, {p::kPhone, text("no list")}, {p::kFirst, number(1)}}), "");
}

TEST(DisplayNameTest, AGroupIsCalledByItsName) {
    EXPECT_EQ(named({{p::kGroupName, text("Friends")}, {p::kFirst, text("Ida")}}, Kind::group), "Friends");
    EXPECT_EQ(named({{p::kGroupName, text("Friends")}}), "");
}

} // namespace
} // namespace addressbook::test

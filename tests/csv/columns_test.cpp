// What headers mean, and what cells become.

#include "frameworks/AddressBook/csv/person.h"
#include "frameworks/AddressBook/values/calendar.h"

#include <gtest/gtest.h>

namespace addressbook::csv {
namespace {

Person read(const std::vector<std::string>& headers, const std::vector<std::string>& cells,
            DateOrder order = DateOrder::monthFirst) {
    std::vector<Column> columns;
    for (const std::string& header : headers) {
        columns.push_back(columnNamed(header, {}).value_or(Column()));
    }
    return personFrom({2, cells}, columns, {}, order);
}

// The entries of a property as "label=value" or "label:key=value", in their order.
std::string entries(const Person& person, std::string_view property) {
    std::string text;
    const auto found = person.values.find(std::string(property));
    if (found == person.values.end()) {
        return "none";
    }
    for (const Entry& entry : found->second.as<MultiValue>()->entries) {
        text += (text.empty() ? "" : " ") + entry.label;
        if (const auto* fields = entry.value.as<Dictionary>()) {
            for (const auto& [key, value] : *fields) {
                text += ':' + key + '=' + *value.as<std::string>();
            }
        } else if (const auto* word = entry.value.as<std::string>()) {
            text += '=' + *word;
        }
    }
    return text;
}

std::string birthday(const std::string& text, DateOrder order = DateOrder::monthFirst) {
    const Person person = read({"Birthday"}, {text}, order);
    const auto found = person.values.find("Birthday");
    if (found == person.values.end()) {
        return person.problems.empty() ? "none" : "refused";
    }
    const auto parts = dayParts(found->second);
    return std::to_string(parts->year.value_or(0)) + '-' + std::to_string(*parts->month) + '-' +
           std::to_string(*parts->day) + (person.ambiguousDate ? "?" : "");
}

TEST(CsvColumnsTest, KnowsTheHeadersOfOutlook) {
    const Person person = read({"First Name", "Last Name", "Home Phone", "Home Phone 2", "Business Fax",
                                "Company Main Phone", "Mobile Phone", "TTY/TDD Phone", "Assistant's Phone"},
                               {"Ole", "Tal", "1", "2", "3", "4", "5", "6", "7"});
    EXPECT_EQ(*person.values.at("First").as<std::string>(), "Ole");
    EXPECT_EQ(entries(person, "Phone"), "_$!<Home>!$_=1 _$!<Home>!$_=2 _$!<WorkFAX>!$_=3 _$!<Main>!$_=4 "
                                        "_$!<Mobile>!$_=5 TTY/TDD=6 _$!<Assistant>!$_=7");
    const Person address = read(
        {"Business Street", "Business Street 2", "Business City", "Business Postal Code",
         "Business Country/Region", "Home City", "Home Address PO Box", "E-mail Address", "E-mail 2 Address"},
        {"Mill 1", "Floor 2", "Oslo", "0150", "Norway", "Bergen", "Box 3", "a@x", "b@x"});
    EXPECT_EQ(entries(address, "Address"),
              "_$!<Work>!$_:City=Oslo:Country=Norway:Street=Mill 1\nFloor 2:ZIP=0150 "
              "_$!<Home>!$_:City=Bergen:Street=Box 3");
    EXPECT_EQ(entries(address, "Email"), "_$!<Home>!$_=a@x _$!<Home>!$_=b@x");
}

TEST(CsvColumnsTest, KnowsTheHeadersOfGoogle) {
    const Person person =
        read({"E-mail 1 - Type", "E-mail 1 - Value", "E-mail 2 - Label", "E-mail 2 - Value",
              "E-mail 3 - Type", "E-mail 3 - Value", "Address 1 - Formatted", "Address 1 - Type",
              "Address 1 - Street", "Address 1 - PO Box", "Address 1 - Region", "Address 2 - Formatted",
              "Group Membership", "Organization 1 - Title", "Event 1 - Type", "Event 1 - Value"},
             {"Work", "a@x ::: b@x", "* boat", "c@x", "Work", "d@x", "all of it", "Home", "Mill 1", "Box 3",
              "Viken", "alone", "* myContacts ::: Rowers ::: Chess", "Baker", "Anniversary", "2001-02-03"});
    EXPECT_EQ(entries(person, "Email"), "_$!<Work>!$_=a@x _$!<Work>!$_=b@x boat=c@x _$!<Work>!$_=d@x");
    const auto& emails = *person.values.at("Email").as<MultiValue>();
    EXPECT_EQ(emails.primary, emails.entries[2].identifier);
    EXPECT_EQ(entries(person, "Address"),
              "_$!<Home>!$_:State=Viken:Street=Mill 1\nBox 3 _$!<Home>!$_:Street=alone");
    EXPECT_EQ(person.groups, (std::vector<std::string>{"Rowers", "Chess"}));
    EXPECT_EQ(*person.values.at("JobTitle").as<std::string>(), "Baker");
    EXPECT_EQ(person.values.at("ABDate").as<MultiValue>()->entries[0].label, "_$!<Anniversary>!$_");
}

TEST(CsvColumnsTest, KnowsTheHeadersOfApple) {
    const Person person =
        read({"First", "Last", "Phone (home)", "Email - work", "work address city", "Home Page"},
             {"Ida", "Berg", "1", "a@x", "Oslo", "http://x"});
    EXPECT_EQ(entries(person, "Phone"), "_$!<Home>!$_=1");
    EXPECT_EQ(entries(person, "Email"), "_$!<Work>!$_=a@x");
    EXPECT_EQ(entries(person, "Address"), "_$!<Work>!$_:City=Oslo");
    EXPECT_EQ(*person.values.at("HomePage").as<std::string>(), "http://x");
    EXPECT_FALSE(columnNamed("Shoe size", {}));
    EXPECT_FALSE(columnNamed("Phone 1 - Colour", {}));
}

TEST(CsvColumnsTest, ReadsDatesAsTheyAreWritten) {
    EXPECT_EQ(birthday("1980-03-22"), "1980-3-22");
    EXPECT_EQ(birthday("19800322"), "1980-3-22");
    EXPECT_EQ(birthday("--02-29"), "0-2-29");
    EXPECT_EQ(birthday("22.3.1980"), "1980-3-22");
    EXPECT_EQ(birthday("4.3.1980"), "1980-3-4");
    EXPECT_EQ(birthday("3/22/1980"), "1980-3-22");
    EXPECT_EQ(birthday("22/3/1980"), "1980-3-22");
    EXPECT_EQ(birthday("4/3/1980"), "1980-4-3?");
    EXPECT_EQ(birthday("4/3/1980", DateOrder::dayFirst), "1980-3-4?");
    EXPECT_EQ(birthday("3/22/1980 12:00:00 AM"), "1980-3-22");
    EXPECT_EQ(birthday("0/0/00"), "none");
    EXPECT_EQ(birthday("1981-02-29"), "refused");
    EXPECT_EQ(birthday("3/4/80"), "refused");
    EXPECT_EQ(birthday("soon"), "refused");
    EXPECT_EQ(birthday("99999999999999999999"), "refused");
}

TEST(CsvColumnsTest, AWholeNameIsSplitWhereNothingElseNamesThePerson) {
    const auto name = [](const std::string& text) {
        const Person person = read({"Name"}, {text});
        const auto part = [&](const char* property) {
            const auto found = person.values.find(property);
            return found == person.values.end() ? std::string() : *found->second.as<std::string>();
        };
        return part("First") + '|' + part("Last");
    };
    EXPECT_EQ(name("Ida Marie Berg"), "Ida Marie|Berg");
    EXPECT_EQ(name("Berg, Ida Marie"), "Ida Marie|Berg");
    EXPECT_EQ(name("Ida"), "Ida|");
    EXPECT_EQ(read({"Name", "Company"}, {"Mill", "Mill"}).values.size(), 1U);
}

TEST(CsvColumnsTest, CellsBeyondTheHeadersAreTold) {
    EXPECT_EQ(read({"First"}, {"a", ""}).problems.size(), 0U);
    EXPECT_EQ(read({"First"}, {"a", "b"}).problems.size(), 1U);
    EXPECT_EQ(read({"First", "Last"}, {"a"}).values.size(), 1U);
}

} // namespace
} // namespace addressbook::csv

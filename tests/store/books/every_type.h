#pragma once

// A person that no vCard can describe: a custom property of each type, and values that are hard to keep.
// Included after the Value type of any version of the store.

#include <cmath>
#include <limits>
#include <map>
#include <string>

namespace addressbook::test {

inline const char* const kEveryTypeUid = "everytype"; // no UUID: it is not packed

inline const std::map<std::string, int>& everyTypeDefinitions() {
    static const std::map<std::string, int> types{
        {"aText", 1},       {"aWhole", 2}, {"aReal", 3},        {"aDate", 4},     {"anArray", 5},
        {"aDictionary", 6}, {"aData", 7},  {"aCalendarDay", 8}, {"aList", 0x101}, {"anEmptyList", 0x102}};
    return types;
}

inline std::map<std::string, Value> everyTypeValues() {
    DateComponents day;
    day.year = 2024;
    day.day = 31;
    day.second = 59;
    MultiValue list;
    list.entries.push_back({"AAAAAAAA-0000-4000-8000-0000000000E1", "_$!<Home>!$_", std::string("one")});
    list.entries.push_back({"own", "mine", std::string(300, 'x')});
    list.primary = "own";
    Value nested = std::int64_t{1};
    for (int depth = 0; depth < 60; ++depth) {
        nested = Array{nested};
    }
    return {
        {"aText", std::string("a\0b\xED\xA0\xBD", 6)}, // a zero and half a surrogate pair
        {"aWhole", std::numeric_limits<std::int64_t>::min()},
        {"aReal", -0.0},
        {"aDate", Date{-1e9}},
        {"anArray", nested},
        {"aDictionary", Dictionary{{"City", std::string("Ürümqi")}, {"other", 1.5}}},
        {"aData", Bytes{0, 255, 0}},
        {"aCalendarDay", day},
        {"aList", list},
        {"anEmptyList", MultiValue()},
    };
}

} // namespace addressbook::test

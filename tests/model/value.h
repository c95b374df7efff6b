#pragma once

// What the model's records hold. Plain C++, and on purpose not the types of the address book under test.

#include <compare>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace model {

// A date and time on the user's clock, which runs on UTC in the tests.
struct Civil {
    int year = 0, month = 0, day = 0, hour = 12, minute = 0, second = 0;
    auto operator<=>(const Civil&) const = default;
};

// A time that the address book keeps by itself: some moment of this test run.
struct Clock {
    bool operator==(const Clock&) const = default;
};

// The fields of a postal address, by the framework's keys.
using Address = std::map<std::string, std::string>;

struct Entry;
using Entries = std::vector<Entry>;

struct Value : std::variant<std::monostate, std::string, long long, Civil, Clock, Address, Entries> {
    using variant::variant;
    bool empty() const { return index() == 0; }
    template <typename T>
    const T* as() const {
        return std::get_if<T>(static_cast<const variant*>(this));
    }
    template <typename T>
    T* as() {
        return std::get_if<T>(static_cast<variant*>(this));
    }
};

struct Entry {
    std::string id; // empty until an answer has told it
    std::string label;
    Value value;
    bool operator==(const Entry&) const;
};

inline bool Entry::operator==(const Entry& other) const {
    return id == other.id && label == other.label && value == other.value;
}

// An argument of a call, or a text that may be missing.
using Text = std::optional<std::string>;

// ASCII lower case.
std::string lower(std::string text);

// The date that a text names; none for a text that is no date. Only the forms that the generator uses.
std::optional<Civil> dateFromText(const std::string& text);

// The number that a text begins with, after leading white space and a sign; 0 for none, the last
// there is for one beyond it.
long long integerFromText(const std::string& text);

} // namespace model

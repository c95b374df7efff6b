#pragma once

// The values of the model's records. On purpose not the types of the address book under test.

#include <compare>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace model {

// A date and time in the user's time zone, which is UTC in the tests.
struct Civil {
    int year = 0, month = 0, day = 0, hour = 12, minute = 0, second = 0;
    auto operator<=>(const Civil&) const = default;
};

// A date that the address book sets by itself, which is some moment of this test run.
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
    std::string id; // empty until a result of the plug-in has told it
    std::string label;
    Value value;
    bool operator==(const Entry&) const;
};

inline bool Entry::operator==(const Entry& other) const {
    return id == other.id && label == other.label && value == other.value;
}

// An argument of a call, or a text that may be missing.
using Text = std::optional<std::string>;

// Returns a text with its ASCII letters in lower case.
std::string lower(std::string text);

// Returns the date that a text gives; none for any other text. Knows only the forms that the generator uses.
std::optional<Civil> dateFromText(const std::string& text);

// Returns the number with which a text begins, after white space and a sign; 0 when there is none, the
// nearest limit for one that is too large.
long long integerFromText(const std::string& text);

} // namespace model

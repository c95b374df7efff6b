#pragma once

// The values that an address book holds, in C++: what the store keeps, what vCards are read into, what
// searches compare. Text is UTF-8; a lone surrogate of UTF-16 text is kept as the three bytes that UTF-8
// would give its code point, so that nothing is lost (see text.h).

#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace addressbook {

// The kinds of record; the numbers are stored.
enum class Kind : int { person = 0, group = 1 };

// A property's type, with the framework's numbers. The type of a list of such values is this number plus
// kMultiValue.
enum class Type : int {
    unknown = 0,
    string = 1,
    integer = 2,
    real = 3,
    date = 4,
    array = 5,
    dictionary = 6,
    data = 7,
    dateComponents = 8
};
inline constexpr int kMultiValue = 0x100;

// A point in time: seconds since 2001-01-01 00:00:00 UTC, as Foundation counts them.
struct Date {
    double seconds = 0;
    auto operator<=>(const Date&) const = default;
};

// A date and time of day that belongs to no time zone: seconds since 2001-01-01 00:00:00 on the clock of whoever
// reads it, counted as though that were never put forward or back. A day without a time is its noon.
struct FloatingDate {
    double seconds = 0;
    auto operator<=>(const FloatingDate&) const = default;
};

// A calendar date of which any part may be missing.
struct DateComponents {
    std::optional<int> year, month, day, hour, minute, second;
    bool operator==(const DateComponents&) const = default;
};

struct Value;
struct Entry;
using Bytes = std::vector<std::uint8_t>;
using Array = std::vector<Value>;
using Dictionary = std::map<std::string, Value>;

// The ordered entries of a multi-value property.
struct MultiValue {
    std::vector<Entry> entries;
    std::string primary; // identifier of the primary entry; empty: the first
    bool operator==(const MultiValue&) const;
};

// One value of any type; std::monostate is "no value".
struct Value : std::variant<std::monostate, std::string, std::int64_t, double, Date, FloatingDate,
                            DateComponents, Bytes, Array, Dictionary, MultiValue> {
    using variant::variant;

    bool empty() const { return index() == 0; }
    bool operator==(const Value& other) const;

    // Returns the alternative of type T, or null when the value is of another type.
    template <typename T>
    const T* as() const {
        return std::get_if<T>(static_cast<const variant*>(this));
    }
    template <typename T>
    T* as() {
        return std::get_if<T>(static_cast<variant*>(this));
    }
};

// One entry of a multi-value. Its identifier stays the same when the entry is copied, saved and loaded.
struct Entry {
    std::string identifier; // a UUID
    std::string label;
    Value value;
    bool operator==(const Entry&) const = default;
};

// Returns the type that a property with this value would have: a Type, or for a multi-value whose entries are
// all of one type, that type plus kMultiValue. 0 for no value and for mixed or empty multi-values.
int typeOf(const Value& value);

} // namespace addressbook

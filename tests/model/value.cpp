#include "tests/model/value.h"

#include <cctype>
#include <limits>
#include <utility>

namespace model {

std::string lower(std::string text) {
    for (char& c : text) {
        c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    }
    return text;
}

std::optional<Civil> dateFromText(const std::string& text) {
    static const std::map<std::string, Civil> kDates{
        {"1970-03-12", {1970, 3, 12}},
        {"12/25/2010", {2010, 12, 25}},
        {"25 December 2010", {2010, 12, 25}},
        {"12/25/2010 2:30:15 PM", {2010, 12, 25, 14, 30, 15}},
        {"2001-02-03 04:05", {2001, 2, 3, 4, 5, 0}},
    };
    const auto found = kDates.find(text);
    return found == kDates.end() ? std::nullopt : std::optional(found->second);
}

long long integerFromText(const std::string& text) {
    std::size_t at = 0;
    while (at < text.size() && std::isspace(static_cast<unsigned char>(text[at])) != 0) {
        ++at;
    }
    const bool negative = at < text.size() && text[at] == '-';
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) {
        ++at;
    }
    // Counted below zero, where there is one number more; beyond the last it stays there.
    constexpr auto kLimits = std::numeric_limits<long long>();
    long long number = 0;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
        const int digit = text[at] - '0';
        number = number < (kLimits.min() + digit) / 10 ? kLimits.min() : number * 10 - digit;
    }
    if (negative) {
        return number;
    }
    return number == kLimits.min() ? kLimits.max() : -number;
}

} // namespace model

#include "frameworks/Foundation/locale.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <initializer_list>

namespace foundation {

namespace {

std::string_view languageOf(std::string_view locale) {
    return locale.substr(0, locale.find_first_of("_-"));
}

std::string_view regionOf(std::string_view locale) {
    const auto separator = locale.find_last_of("_-");
    return separator == std::string_view::npos ? std::string_view() : locale.substr(separator + 1);
}

template <std::size_t count>
bool contains(const std::array<std::string_view, count>& list, std::string_view one) {
    return std::find(list.begin(), list.end(), one) != list.end();
}

} // namespace

std::string localeName(const char* category) {
    for (const char* variable : {"LC_ALL", category, "LANG"}) {
        if (const char* value = std::getenv(variable); value && *value) {
            const std::string_view name = value;
            return std::string(name.substr(0, name.find_first_of(".@")));
        }
    }
    return "";
}

std::string localeCountry() {
    const std::string name = localeName("LC_ADDRESS");
    std::string country(regionOf(name));
    if (country.size() != 2) {
        return "us";
    }
    std::transform(country.begin(), country.end(), country.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return country;
}

bool localeNamesLastFirst() {
    constexpr std::array<std::string_view, 5> kLanguages = {"hu", "ja", "ko", "vi", "zh"};
    return contains(kLanguages, languageOf(localeName("LC_NAME")));
}

bool writesDayFirst(std::string_view locale) {
    constexpr std::array<std::string_view, 5> kMonthFirst = {"", "C", "POSIX", "en", "en_US_POSIX"};
    constexpr std::array<std::string_view, 3> kYearFirstLanguages = {"ja", "ko", "zh"};
    constexpr std::array<std::string_view, 4> kMonthFirstRegions = {"US", "PH", "FM", "MH"};
    if (contains(kMonthFirst, locale) || contains(kYearFirstLanguages, languageOf(locale))) {
        return false;
    }
    const bool spanish = languageOf(locale) == "es";
    return spanish || !contains(kMonthFirstRegions, regionOf(locale));
}

} // namespace foundation

#include "locale.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <initializer_list>
#include <string_view>

namespace addressbook {

namespace {

// The locale's name for a category, "de_DE" of "de_DE.UTF-8@euro".
std::string localeName(const char* category) {
    for (const char* variable : {"LC_ALL", category, "LANG"})
        if (const char* value = std::getenv(variable); value && *value) {
            const std::string_view name = value;
            return std::string(name.substr(0, name.find_first_of(".@")));
        }
    return "";
}

} // namespace

std::string localeCountry() {
    const std::string name = localeName("LC_ADDRESS");
    const auto separator = name.find('_');
    if (separator == std::string::npos || name.size() != separator + 3)
        return "us";
    std::string country = name.substr(separator + 1);
    std::transform(country.begin(), country.end(), country.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return country;
}

bool localeNamesLastFirst() {
    constexpr std::array<std::string_view, 5> kLanguages = {"hu", "ja", "ko", "vi", "zh"};
    const std::string name = localeName("LC_NAME");
    return std::find(kLanguages.begin(), kLanguages.end(), name.substr(0, name.find('_'))) !=
           kLanguages.end();
}

} // namespace addressbook

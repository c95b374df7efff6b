#pragma once

#import <Foundation/Foundation.h>
#include <array>
#include <string_view>

namespace koru {

// The country codes that an address may have, in lower case. The list is the plug-in's own and differs from
// the standard on purpose: "vn" is there twice, "yu" is still there, and "uk", "pr" and "sm" are missing.
// clang-format off
inline constexpr std::array<std::string_view, 200> kCountryCodes = {
    "ad", "ae", "ag", "al", "am", "ao", "ar", "at", "au", "az", "ba", "bb", "bd", "be", "bf", "bg",
    "bh", "bi", "bj", "bm", "bn", "bo", "br", "bs", "bt", "bw", "by", "bz", "ca", "cd", "cf", "cg",
    "ch", "ci", "cl", "cm", "cn", "co", "cr", "cu", "cv", "cy", "cz", "de", "dk", "dm", "do", "dz",
    "ec", "ee", "eg", "er", "es", "et", "fi", "fj", "fk", "fo", "fr", "ga", "gb", "gd", "ge", "gl",
    "gm", "gn", "gq", "gr", "gs", "gt", "gw", "gy", "hk", "hn", "hr", "ht", "hu", "id", "ie", "il",
    "im", "in", "iq", "ir", "is", "it", "jm", "jo", "jp", "ke", "kg", "kh", "ki", "km", "kp", "kr",
    "kw", "ky", "kz", "la", "lb", "lc", "li", "lk", "lr", "ls", "lt", "lu", "lv", "ly", "ma", "mc",
    "md", "me", "mg", "mk", "ml", "mm", "mn", "mo", "mr", "mt", "mu", "mv", "mw", "mx", "my", "mz",
    "na", "nc", "ne", "ng", "ni", "nl", "no", "np", "nr", "nz", "om", "pa", "pe", "pf", "pg", "ph",
    "pk", "pl", "pt", "py", "qa", "ro", "rs", "ru", "rw", "sa", "sb", "sc", "sd", "se", "sg", "sh",
    "si", "sk", "sl", "sn", "so", "sr", "st", "sv", "sy", "sz", "td", "tg", "th", "tj", "tl", "tm",
    "tn", "to", "tr", "tt", "tv", "tw", "tz", "ua", "ug", "us", "uy", "uz", "va", "vc", "ve", "vn",
    "vn", "vu", "ws", "ye", "yu", "za", "zm", "zw",
};
// clang-format on

} // namespace koru

// Whether the list has the code exactly as it stands, two letters in lower case; false for nil.
[[nodiscard]] bool IsValidCountryCode(NSString* code);

#include "host/values/locales.h"

#include "host/values/number.h"

#include <memory>
#include <string>
#include <unicode/uchar.h>

namespace host {

namespace {

// The first and the last of the interface's numbers that stand for a language.
constexpr int32_t kFirstLanguage = 16;
constexpr int32_t kLastLanguage = 76;

// ICU's locale for each language, by the interface's number, from kFirstLanguage on. The custom Finnish and
// Swedish orders (fmi) treat v and w as one letter; German sorts as in telephone books, or as in
// dictionaries.
constexpr const char* kLanguages[] = {
    "ca",                       // CAT
    "hr",                       // HRV
    "cs",                       // CES
    "da",                       // DAN
    "nl",                       // NLD
    "en",                       // ENG
    "fi",                       // FIN
    "fi@collation=traditional", // FIN_fmi
    "fr",                       // FRA
    "de@collation=phonebook",   // DEU
    "de",                       // DEU_dictionary
    "el",                       // ELL
    "hu",                       // HUN
    "is",                       // ISL
    "it",                       // ITA
    "ja",                       // JPN
    "nb",                       // NOR
    "pl",                       // POL
    "pt",                       // POR
    "ro",                       // RON
    "ru",                       // RUS
    "sk",                       // SLK
    "sl",                       // SLV
    "es",                       // SPA
    "es@collation=traditional", // SPA_traditional
    "sv",                       // SWE
    "sv@collation=traditional", // SWE_fmi
    "tr",                       // TUR
    "uk",                       // UKR
    "zh",                       // CHI
    "zh@collation=stroke",      // CHI_stroke
    "he",                       // HE
    "hi",                       // HI
    "ar",                       // AR
    "et",                       // ET
    "lt",                       // LT
    "lv",                       // LV
    "sr",                       // SR
    "fa",                       // FA
    "bg",                       // BG
    "vi",                       // VI
    "th",                       // TH
    "el",                       // ELL_Mixed
    "bn",                       // BEN
    "te",                       // TEL
    "mr",                       // MAR
    "ta",                       // TAM
    "gu",                       // GUJ
    "kn",                       // KAN
    "ml",                       // MAL
    "or",                       // ORI
    "pa",                       // PAN
    "si",                       // SIN
    "ur",                       // URD
    "dv",                       // DIV
    "my",                       // BUR
    "sa",                       // SAN
    "lo",                       // LAO
    "km",                       // KHM
    "bo",                       // BOD
    "ko",                       // KOR
};
static_assert(std::size(kLanguages) == kLastLanguage - kFirstLanguage + 1);

// Returns a text with all decimal digits as 0 to 9, and without marks for the direction of writing.
std::u16string withPlainDigits(std::u16string_view text) {
    std::u16string plain;
    for (const char16_t c : text) {
        const int32_t digit = u_charDigitValue(c);
        if (digit >= 0) {
            plain += static_cast<char16_t>(u'0' + digit);
        } else if (u_charType(c) != U_FORMAT_CHAR) {
            plain += c;
        }
    }
    return plain;
}

} // namespace

const char* icuLocaleOf(int32_t locale) {
    return locale >= kFirstLanguage && locale <= kLastLanguage ? kLanguages[locale - kFirstLanguage]
                                                               : nullptr;
}

DateOrder dateOrderIn(int32_t locale) {
    const char* language = icuLocaleOf(locale);
    return language == nullptr ? formats().dateOrder : dateOrderOf(language);
}

std::optional<DateTime> timestampIn(int32_t locale, std::u16string_view text) {
    return icuLocaleOf(locale) == nullptr
               ? DateTime::timestampFromText(text)
               : DateTime::timestampFromText(withPlainDigits(text), dateOrderIn(locale));
}

Value valueIn(int32_t locale, std::u16string_view text, ValueType wanted) {
    const bool isDay = wanted == ValueType::date || wanted == ValueType::timestamp;
    if (!isDay || icuLocaleOf(locale) == nullptr) {
        return Value::text(text);
    }
    if (const auto moment = timestampIn(locale, text)) {
        return Value::timestamp(*moment);
    }
    return Number::standsIn(withPlainDigits(text)) ? Value::invalid() : Value::text(text);
}

} // namespace host

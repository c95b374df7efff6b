// Sorting lists, and removing duplicate values from them. Texts are ordered by the rules of a language.
#include "host/calc/functions/groups.h"
#include "host/calc/lists.h"
#include "host/calc/styled_text.h"
#include "host/values/locales.h"
#include "host/values/text.h"

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <unicode/ucol.h>

namespace host {

namespace {

struct Language {
    std::u16string_view name;
    int32_t locale; // its number in the plug-in interface
};

constexpr int32_t kRaw = 2;
constexpr int32_t kStandard = 3;
constexpr int32_t kCatalog = 4;
constexpr Language kLanguages[] = {
    {u"Unicode_Raw", kRaw},
    {u"Unicode_Standard", kStandard},
    {u"Catalog", kCatalog},
    {u"Arabic", 49},
    {u"Bengali", 59},
    {u"Bulgarian", 55},
    {u"Catalan", 16},
    {u"Chinese", 45},
    {u"Chinese_Stroke", 46},
    {u"Croatian", 17},
    {u"Czech", 18},
    {u"Danish", 19},
    {u"Dutch", 20},
    {u"English", 21},
    {u"Estonian", 50},
    {u"Finnish", 22},
    {u"Finnish_Custom", 23},
    {u"French", 24},
    {u"German", 25},
    {u"German_Dictionary", 26},
    {u"Greek", 27},
    {u"Greek_Mixed", 58},
    {u"Gujarati", 63},
    {u"Hebrew", 47},
    {u"Hindi", 48},
    {u"Hungarian", 28},
    {u"Icelandic", 29},
    {u"Italian", 30},
    {u"Japanese", 31},
    {u"Kannada", 64},
    {u"Korean", 76},
    {u"Latvian", 52},
    {u"Lithuanian", 51},
    {u"Malayalam", 65},
    {u"Marathi", 61},
    {u"Norwegian", 32},
    {u"Panjabi", 67},
    {u"Persian", 54},
    {u"Polish", 33},
    {u"Portuguese", 34},
    {u"Romanian", 35},
    {u"Russian", 36},
    {u"Serbian", 53},
    {u"Slovak", 37},
    {u"Slovenian", 38},
    {u"Spanish", 39},
    {u"Spanish_Traditional", 40},
    {u"Swedish", 41},
    {u"Swedish_Custom", 42},
    {u"Tamil", 62},
    {u"Telugu", 60},
    {u"Thai", 57},
    {u"Turkish", 43},
    {u"Ukrainian", 44},
    {u"Vietnamese", 56},
};

// The order of texts in a language: makes a sort key for each text.
class TextOrder {
  public:
    // [locale] may be kRaw: the order of the characters' codes.
    TextOrder(int32_t locale, UCollationStrength strength) {
        if (locale != kRaw) {
            const char* language = icuLocaleOf(locale);
            UErrorCode status = U_ZERO_ERROR;
            collator_.reset(ucol_open(language == nullptr ? "root" : language, &status));
            ucol_setStrength(collator_.get(), strength);
        }
    }

    std::string key(std::u16string_view text) const {
        if (collator_ == nullptr) {
            return toUtf8(text);
        }
        const auto length = static_cast<int32_t>(text.size());
        const int32_t size = ucol_getSortKey(collator_.get(), text.data(), length, nullptr, 0);
        std::string result(static_cast<size_t>(size), '\0');
        ucol_getSortKey(collator_.get(), text.data(), length, reinterpret_cast<uint8_t*>(result.data()),
                        size);
        return result;
    }

  private:
    std::unique_ptr<UCollator, decltype(&ucol_close)> collator_{nullptr, ucol_close};
};

// The sort key of a value: its number, or its key as a text. Values without a number come before all numbers.
struct Key {
    std::optional<Number> number;
    std::string text;

    friend bool operator<(const Key& left, const Key& right) {
        if (left.number && right.number) {
            return *left.number < *right.number;
        }
        return left.number || right.number ? !left.number : left.text < right.text;
    }
};

// Returns the type for the datatype argument of both functions; text for an unknown one.
ValueType typeOf(int64_t datatype) {
    constexpr ValueType kTypes[] = {ValueType::text, ValueType::number, ValueType::date, ValueType::time,
                                    ValueType::timestamp};
    const int64_t place = std::abs(datatype) - 1;
    return place >= 0 && place < static_cast<int64_t>(std::size(kTypes)) ? kTypes[place] : ValueType::text;
}

// Returns the locale that the third argument names; the default order when there is no such argument.
std::optional<int32_t> localeOf(Arguments in) {
    const std::u16string name = in.size() > 2 ? foldCase(in[2].asText()) : std::u16string();
    if (name.empty()) {
        return kStandard;
    }
    const auto* found = std::find_if(std::begin(kLanguages), std::end(kLanguages),
                                     [&](const Language& row) { return foldCase(row.name) == name; });
    return found == std::end(kLanguages) ? std::nullopt : std::optional(found->locale);
}

Key keyOf(std::u16string_view text, ValueType type, const TextOrder& order) {
    if (type == ValueType::text) {
        return {std::nullopt, order.key(text)};
    }
    const Value value = Value::text(text).convertedTo(type);
    auto number = value.isValid() ? value.asNumber() : std::nullopt;
    return {number, number ? std::string() : order.key(text)};
}

Value sortValues(Session& /*session*/, Arguments in) {
    const int64_t datatype = in.size() > 1 ? integer(in[1]) : 1;
    const auto locale = localeOf(in);
    if (!locale || !in[0].isValid()) {
        return Value::invalid();
    }
    const TextOrder order(*locale, UCOL_TERTIARY);
    const StyledText text(in[0]);
    std::vector<std::pair<Key, std::u16string_view>> keyed;
    for (const std::u16string_view value : listValues(text.text())) {
        keyed.emplace_back(keyOf(value, typeOf(datatype), order), value);
    }
    std::stable_sort(keyed.begin(), keyed.end(), [datatype](const auto& a, const auto& b) {
        return datatype < 0 ? b.first < a.first : a.first < b.first;
    });
    std::vector<std::u16string_view> sorted;
    sorted.reserve(keyed.size());
    for (const auto& [key, value] : keyed) {
        sorted.push_back(value);
    }
    return terminatedList(text, sorted);
}

Value uniqueValues(Session& /*session*/, Arguments in) {
    const ValueType type = typeOf(in.size() > 1 ? integer(in[1]) : 1);
    const auto locale = localeOf(in);
    if (!locale || !in[0].isValid()) {
        return Value::invalid();
    }
    const TextOrder order(*locale, UCOL_SECONDARY);
    const StyledText text(in[0]);
    std::set<Key> seen;
    std::vector<std::u16string_view> kept;
    for (const std::u16string_view value : listValues(text.text())) {
        if (seen.insert(keyOf(value, type, order)).second) {
            kept.push_back(value);
        }
    }
    return terminatedList(text, kept);
}

constexpr Builtin kFunctions[] = {
    {u"SortValues ( values {; datatype ; locale } )", sortValues,
     "Sorts a list as texts, numbers, dates, times or timestamps."},
    {u"UniqueValues ( values {; datatype ; locale } )", uniqueValues,
     "Returns each value of a list once, in the list's order."},
};

} // namespace

std::span<const Builtin> textSortFunctions() {
    return kFunctions;
}

} // namespace host

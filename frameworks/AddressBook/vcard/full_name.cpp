#include "frameworks/AddressBook/vcard/full_name.h"

#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/encoding.h"

#include <algorithm>
#include <array>
#include <vector>

namespace addressbook::vcard {

namespace {

// Upper case, without dots.
constexpr std::array<std::string_view, 35> kTitles{
    "DR",  "PROF", "MR",      "MRS",  "MS",    "MISS",     "MX",   "SIR", "DAME", "LORD", "LADY", "REV",
    "HON", "FR",   "HERR",    "FRAU", "ING",   "DIPL-ING", "MAG",  "LIC", "MME",  "MLLE", "SRA",  "SRTA",
    "DON", "DOTT", "DOTTSSA", "SIG",  "SIGRA", "DHR",      "MEVR", "IR",  "DRS",  "CAPT", "COL"};
constexpr std::array<std::string_view, 17> kSuffixes{"JR",  "SR",  "JUN", "SEN", "II",  "III",
                                                     "IV",  "PHD", "MD",  "DDS", "DVM", "JD",
                                                     "ESQ", "MBA", "MSC", "BSC", "CPA"};
constexpr std::array<std::string_view, 36> kParticles{
    "VON",   "VOM", "ZU", "ZUM", "ZUR", "VAN", "VAN'T", "DER", "DEN", "DES", "TER",   "TEN",
    "TE",    "'T",  "DE", "LA",  "LAS", "LOS", "LE",    "LES", "DU",  "DEL", "DELLA", "DELLE",
    "DEGLI", "DEI", "DI", "DA",  "DAL", "DAS", "DO",    "DOS", "AF",  "AV",  "AL",    "EL"};

using Words = std::vector<std::string_view>;

Words wordsOf(std::string_view text) {
    Words words;
    while (!(text = trim(text)).empty()) {
        const std::size_t end = std::min(text.find_first_of(" \t\n"), text.size());
        words.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return words;
}

std::string joined(Words::const_iterator from, Words::const_iterator to) {
    std::string text;
    for (; from != to; ++from) {
        text.append(text.empty() ? "" : " ").append(*from);
    }
    return text;
}

template <typename Table>
bool isIn(const Table& table, std::string_view word) {
    std::string upper = upperCase(word);
    std::erase(upper, '.');
    return std::find(table.begin(), table.end(), upper) != table.end();
}

bool startsLower(std::string_view word) {
    return (word[0] >= 'a' && word[0] <= 'z') || word[0] == '\'';
}

// Where the family name begins: at the first particle, else at the last word. A particle in capitals that
// comes first ("Van Morrison") is a first name, as any is that comes last.
std::size_t familyStart(const Words& words) {
    for (std::size_t at = 0; at + 1 < words.size(); ++at) {
        if (isIn(kParticles, words[at]) && (at > 0 || startsLower(words[at]))) {
            return at;
        }
    }
    return words.size() - 1;
}

void takeTitle(Words& words, NameParts& parts) {
    auto end = words.begin();
    while (end != words.end() && end + 1 != words.end() && isIn(kTitles, *end)) {
        ++end;
    }
    parts.title = joined(words.begin(), end);
    words.erase(words.begin(), end);
}

void takeSuffix(Words& words, NameParts& parts) {
    auto start = words.end();
    while (start - words.begin() > 2 && isIn(kSuffixes, *(start - 1))) {
        --start;
    }
    const std::string suffix = joined(start, words.end());
    parts.suffix = suffix + (suffix.empty() || parts.suffix.empty() ? "" : ", ") + parts.suffix;
    words.erase(start, words.end());
}

} // namespace

NameParts splitFullName(std::string_view name) {
    NameParts parts;
    // Suffixes after a comma.
    for (std::size_t comma = name.rfind(','); comma != std::string_view::npos; comma = name.rfind(',')) {
        const Words behind = wordsOf(name.substr(comma + 1));
        if (!std::all_of(behind.begin(), behind.end(), [](auto word) { return isIn(kSuffixes, word); })) {
            break;
        }
        const std::string suffix = joined(behind.begin(), behind.end());
        parts.suffix = suffix + (suffix.empty() || parts.suffix.empty() ? "" : ", ") + parts.suffix;
        name = name.substr(0, comma);
    }
    Words words = wordsOf(name);
    if (words.empty()) {
        return parts;
    }
    if (const std::size_t comma = name.find(','); comma != std::string_view::npos) {
        words = wordsOf(name.substr(comma + 1));
        takeTitle(words, parts);
        parts.first = joined(words.begin(), words.end());
        words = wordsOf(name.substr(0, comma));
        if (parts.title.empty()) {
            takeTitle(words, parts);
        }
        parts.last = joined(words.begin(), words.end());
        return parts;
    }
    takeTitle(words, parts);
    takeSuffix(words, parts);
    if (words.size() == 1) {
        (parts.title.empty() ? parts.first : parts.last) = words[0];
        return parts;
    }
    const auto family = words.begin() + static_cast<std::ptrdiff_t>(familyStart(words));
    parts.first = joined(words.begin(), family);
    parts.last = joined(family, words.end());
    return parts;
}

} // namespace addressbook::vcard

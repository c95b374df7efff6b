#include "frameworks/AddressBook/store/interned_words.h"

#include "frameworks/AddressBook/values/property.h"
#include "frameworks/AddressBook/values/word_index.h"

#include <array>

namespace addressbook {
namespace {

namespace p = property;

// Words that most records hold. The number of a word is its place in this table, counted from 1.
// clang-format off
constexpr std::array<std::string_view, 65> kWords{
    p::kFirst, p::kLast, p::kFirstPhonetic, p::kLastPhonetic, p::kMiddle, p::kMiddlePhonetic, p::kTitle,
    p::kSuffix, p::kNickname, p::kMaidenName, p::kBirthday, p::kOrganization, p::kJobTitle, p::kDepartment,
    p::kNote, p::kHomePage, p::kPersonFlags, p::kUrls, p::kCalendarUris, p::kEmail, p::kPhone,
    p::kRelatedNames, p::kAim, p::kJabber, p::kMsn, p::kYahoo, p::kIcq, p::kAddress, p::kOtherDates,
    p::kSocialProfile, p::kInstantMessage, p::kGroupName, p::kUnknownLines, p::kDistribution, "Street",
    "City", "State", "ZIP", "Country", "CountryCode", "_$!<Home>!$_", "_$!<Work>!$_", "_$!<Other>!$_",
    "_$!<HomePage>!$_", "_$!<Mobile>!$_", "_$!<Main>!$_", "_$!<HomeFAX>!$_", "_$!<WorkFAX>!$_",
    "_$!<Pager>!$_", "_$!<Anniversary>!$_", "_$!<Father>!$_", "_$!<Mother>!$_", "_$!<Parent>!$_",
    "_$!<Brother>!$_", "_$!<Sister>!$_", "_$!<Child>!$_", "_$!<Friend>!$_", "_$!<Spouse>!$_",
    "_$!<Partner>!$_", "_$!<Assistant>!$_", "_$!<Manager>!$_", p::kCreation, p::kModification, p::kImage,
    p::kUid,
};
// clang-format on

// Returns FNV-1a over all words in order, each with a terminator; the assertion below pins the table.
constexpr std::uint64_t fingerprint() {
    std::uint64_t hash = 0xCBF29CE484222325U;
    const auto add = [&hash](char c) { hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3U; };
    for (const std::string_view word : kWords) {
        for (const char c : word) {
            add(c);
        }
        add('\0');
    }
    return hash;
}
static_assert(fingerprint() == 0x466547D7D75E43AE,
              "the words' numbers are stored: only add at the end, and count a new schema version");

constexpr WordIndex kIndex(kWords);
static_assert(kWords.size() < kWordNumbersEnd);

} // namespace

int wordCode(std::string_view word) {
    return static_cast<int>(kIndex.find(word));
}

std::string_view wordOf(std::uint64_t code) {
    return code >= 1 && code <= kWords.size() ? kWords[code - 1] : std::string_view();
}

} // namespace addressbook

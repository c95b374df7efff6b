#include "tools/addressbook/known_records.h"

#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <array>
#include <set>

namespace addressbook::tool {

namespace {

// Whether a unique id was made of a text, as are those of cards without a UUID, and not at random: by the
// version in the UUID, "xxxxxxxx-xxxx-5...".
bool isMadeOfText(const std::string& uid) {
    constexpr std::size_t kVersion = 14;
    return uid.size() > kVersion && uid[kVersion] == '5';
}

bool isPartOfWord(char byte) {
    return byte < 0 || (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= 'a' && byte <= 'z');
}

void addWordsOf(std::string_view text, std::set<std::string>& words) {
    while (!text.empty()) {
        std::size_t length = 0;
        while (length < text.size() && isPartOfWord(text[length])) {
            ++length;
        }
        if (length > 0) {
            words.emplace(text.substr(0, length));
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
}

void addWords(const Value& value, std::set<std::string>& words) {
    if (const auto* text = value.as<std::string>()) {
        addWordsOf(*text, words);
    } else if (const auto* list = value.as<MultiValue>()) {
        for (const Entry& entry : list->entries) {
            addWords(entry.value, words);
        }
    } else if (const auto* fields = value.as<Dictionary>()) {
        for (const auto& [key, field] : *fields) {
            addWords(field, words);
        }
    }
}

// The properties that all versions filled from the same lines of a card.
constexpr std::array kLookedAt{property::kTitle,        property::kFirst,      property::kMiddle,
                               property::kLast,         property::kSuffix,     property::kNickname,
                               property::kOrganization, property::kDepartment, property::kJobTitle,
                               property::kEmail,        property::kPhone,      property::kAddress,
                               property::kNote,         property::kUrls,       property::kGroupName};

// What the values say: their words, each once, in one order. It is the same however a name or an address is
// taken apart.
std::string contentsOf(Kind kind, const std::map<std::string, Value>& values) {
    std::set<std::string> words;
    for (const std::string_view property : kLookedAt) {
        if (const auto found = values.find(std::string(property)); found != values.end()) {
            addWords(found->second, words);
        }
    }
    std::string all = words.empty() ? "" : kind == Kind::group ? "group" : "person";
    for (const std::string& word : words) {
        all.append(1, ' ').append(word);
    }
    return all.empty() ? all : vcard::uuidOf(all);
}

} // namespace

std::string KnownRecords::withContents(Kind kind, const std::map<std::string, Value>& values,
                                       const std::function<bool(const std::string& uid)>& isFree) {
    if (!hasContents_ && store_) {
        for (const Kind each : {Kind::person, Kind::group}) {
            for (const RowId row : store_->rows(each)) {
                if (const auto record = store_->find(row); record && isMadeOfText(record->uid)) {
                    byContents_[contentsOf(each, store_->values(row))].push_back(record->uid);
                }
            }
        }
    }
    hasContents_ = true;
    if (byContents_.empty()) {
        return {};
    }
    const std::string contents = contentsOf(kind, values);
    const auto found = contents.empty() ? byContents_.end() : byContents_.find(contents);
    if (found != byContents_.end()) {
        for (const std::string& uid : found->second) {
            if (isFree(uid)) {
                return uid;
            }
        }
    }
    return {};
}

std::string KnownRecords::withOtherUid(const std::string& uuid) {
    if (!hasOtherUids_ && store_) {
        for (const Kind kind : {Kind::person, Kind::group}) {
            for (const RowId row : store_->rows(kind)) {
                const auto other = vcard::keptUid(store_->value(row, property::kUnknownLines));
                const auto record = other ? store_->find(row) : std::nullopt;
                if (record) {
                    byOtherUid_.emplace(vcard::uuidOf(*other), record->uid);
                }
            }
        }
    }
    hasOtherUids_ = true;
    const auto found = byOtherUid_.find(uuid);
    return found == byOtherUid_.end() ? std::string() : found->second;
}

} // namespace addressbook::tool

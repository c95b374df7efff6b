#include "frameworks/AddressBook/vcard/labels.h"

#include "frameworks/AddressBook/vcard/encoding.h"

#include <algorithm>
#include <array>

namespace addressbook::vcard {

namespace {

// The first row whose words are all there names the label, so rows with more words come first.
struct Row {
    std::array<std::string_view, 2> types; // the second may be empty
    std::string_view label;
    Entries entries;
    Use use;
};
constexpr std::array kRows{
    Row{{"HOME", "FAX"}, "_$!<HomeFAX>!$_", Entries::telephones, Use::written},
    Row{{"WORK", "FAX"}, "_$!<WorkFAX>!$_", Entries::telephones, Use::written},
    Row{{"OTHER", "FAX"}, "_$!<OtherFAX>!$_", Entries::telephones, Use::written},
    Row{{"IPHONE", "CELL"}, "iPhone", Entries::telephones, Use::written},
    Row{{"FAX", ""}, "_$!<OtherFAX>!$_", Entries::telephones, Use::readOnly},
    Row{{"IPHONE", ""}, "iPhone", Entries::telephones, Use::readOnly},
    Row{{"CELL", ""}, "_$!<Mobile>!$_", Entries::telephones, Use::written},
    Row{{"MOBILE", ""}, "_$!<Mobile>!$_", Entries::telephones, Use::readOnly},
    Row{{"MAIN", ""}, "_$!<Main>!$_", Entries::telephones, Use::written},
    Row{{"PAGER", ""}, "_$!<Pager>!$_", Entries::telephones, Use::written},
    Row{{"HOME", ""}, kHomeLabel, Entries::any, Use::written},
    Row{{"WORK", ""}, kWorkLabel, Entries::any, Use::written},
    Row{{"PERSONAL", ""}, kHomeLabel, Entries::any, Use::readOnly},
    Row{{"BUSINESS", ""}, kWorkLabel, Entries::any, Use::readOnly},
    Row{{"OTHER", ""}, kOtherLabel, Entries::any, Use::written},
};

// Words that say what a number or an address can do, not whose or where it is: never a label.
constexpr std::array<std::string_view, 15> kCapabilities{"BBS",  "DOM",    "INTL", "ISDN",   "MODEM",
                                                         "MSG",  "PARCEL", "PCS",  "POSTAL", "SMS",
                                                         "TEXT", "TLX",    "TTY",  "VIDEO",  "X400"};

// Relations that the framework has a label for.
struct Relation {
    std::string_view type, label;
};
constexpr std::array kRelations{
    Relation{"FATHER", "_$!<Father>!$_"},   Relation{"MOTHER", "_$!<Mother>!$_"},
    Relation{"PARENT", "_$!<Parent>!$_"},   Relation{"BROTHER", "_$!<Brother>!$_"},
    Relation{"SISTER", "_$!<Sister>!$_"},   Relation{"CHILD", "_$!<Child>!$_"},
    Relation{"FRIEND", "_$!<Friend>!$_"},   Relation{"SPOUSE", "_$!<Spouse>!$_"},
    Relation{"PARTNER", "_$!<Partner>!$_"}, Relation{"ASSISTANT", "_$!<Assistant>!$_"},
    Relation{"MANAGER", "_$!<Manager>!$_"},
};

template <typename Table>
bool contains(const Table& table, std::string_view word) {
    return std::find(table.begin(), table.end(), word) != table.end();
}

} // namespace

TypeMeaning meaningOf(const std::vector<std::string>& types) {
    TypeMeaning meaning;
    std::vector<std::string> words; // upper case, beside meaning.extra
    for (const std::string& type : types) {
        std::string upper = upperCase(type);
        if (upper == "PREF") {
            meaning.preferred = true;
        } else if (!upper.empty() && upper != "VOICE" && upper != "INTERNET") {
            words.push_back(std::move(upper));
            meaning.extra.push_back(type);
        }
    }
    meaning.words = meaning.extra;
    const auto* row = std::find_if(kRows.begin(), kRows.end(), [&](const Row& each) {
        return contains(words, each.types[0]) && (each.types[1].empty() || contains(words, each.types[1]));
    });
    if (row != kRows.end()) {
        meaning.label = row->label;
        std::erase_if(meaning.extra,
                      [&](const std::string& type) { return contains(row->types, upperCase(type)); });
        return meaning;
    }
    const auto custom = std::find_if(words.begin(), words.end(),
                                     [](const std::string& word) { return !contains(kCapabilities, word); });
    if (custom != words.end()) {
        const auto at = meaning.extra.begin() + (custom - words.begin());
        meaning.label = custom->starts_with("X-") && custom->size() > 2 ? at->substr(2) : *at;
        meaning.extra.erase(at);
    }
    return meaning;
}

std::vector<std::string_view> typesFor(std::string_view label, Entries entries) {
    for (const Row& row : kRows) {
        if (row.use == Use::written && row.label == label &&
            (row.entries == Entries::any || entries == row.entries)) {
            return row.types[1].empty() ? std::vector{row.types[0]} : std::vector{row.types[0], row.types[1]};
        }
    }
    return {};
}

std::string relationLabel(const std::vector<std::string>& types) {
    for (const std::string& type : types) {
        for (const Relation& relation : kRelations) {
            if (equalsIgnoringCase(type, relation.type)) {
                return std::string(relation.label);
            }
        }
    }
    return types.empty() ? std::string() : types.front();
}

} // namespace addressbook::vcard

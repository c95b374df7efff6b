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
    Row{{"IPHONE", "CELL"}, "iPhone", Entries::telephones, Use::written},
    Row{{"FAX", ""}, "_$!<OtherFAX>!$_", Entries::telephones, Use::written},
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

// A TYPE that every number has. When it is the only one, the number is nothing else.
constexpr std::string_view kVoice = "VOICE";

// Words that say what a number or an address can do, not whose or where it is: never a label.
constexpr std::array<std::string_view, 17> kCapabilities{
    kVoice, "BBS",    "DOM", "INTERNET", "INTL", "ISDN", "MODEM", "MSG", "PARCEL",
    "PCS",  "POSTAL", "SMS", "TEXT",     "TLX",  "TTY",  "VIDEO", "X400"};

// Relations that the framework has a label for. Those that version 4.0 has a word for are written by it.
struct Relation {
    std::string_view type, label;
    Use use = Use::readOnly;
};
constexpr std::array kRelations{
    Relation{"FATHER", "_$!<Father>!$_"},
    Relation{"MOTHER", "_$!<Mother>!$_"},
    Relation{"PARENT", "_$!<Parent>!$_", Use::written},
    Relation{"BROTHER", "_$!<Brother>!$_"},
    Relation{"SISTER", "_$!<Sister>!$_"},
    Relation{"CHILD", "_$!<Child>!$_", Use::written},
    Relation{"FRIEND", "_$!<Friend>!$_", Use::written},
    Relation{"SPOUSE", "_$!<Spouse>!$_", Use::written},
    Relation{"PARTNER", "_$!<Partner>!$_"},
    Relation{"ASSISTANT", "_$!<Assistant>!$_"},
    Relation{"MANAGER", "_$!<Manager>!$_"},
};

template <typename Table>
bool contains(const Table& table, std::string_view word) {
    return std::find(table.begin(), table.end(), word) != table.end();
}

// The word in a label of the framework's own; any other label as it is.
std::string_view wordIn(std::string_view label) {
    constexpr std::string_view kBefore = "_$!<", kBehind = ">!$_";
    if (label.starts_with(kBefore) && label.ends_with(kBehind)) {
        label.remove_prefix(kBefore.size());
        label.remove_suffix(kBehind.size());
    }
    return label;
}

} // namespace

bool sameLabel(std::string_view left, std::string_view right) {
    return equalsIgnoringCase(wordIn(left), wordIn(right));
}

TypeMeaning meaningOf(const std::vector<std::string>& types, Entries entries) {
    TypeMeaning meaning;
    std::vector<std::string> words; // upper case, beside meaning.words
    for (const std::string& type : types) {
        std::string upper = upperCase(type);
        if (upper == "PREF") {
            meaning.preferred = true;
        } else if (!upper.empty() && (entries != Entries::emails || upper != "INTERNET")) {
            words.push_back(std::move(upper));
            meaning.words.push_back(type);
        }
    }
    const auto* row = std::find_if(kRows.begin(), kRows.end(), [&](const Row& each) {
        return contains(words, each.types[0]) && (each.types[1].empty() || contains(words, each.types[1]));
    });
    if (row != kRows.end()) {
        meaning.label = row->label;
        return meaning;
    }
    const auto custom = std::find_if(words.begin(), words.end(),
                                     [](const std::string& word) { return !contains(kCapabilities, word); });
    if (custom != words.end()) {
        const std::string& written = meaning.words[static_cast<std::size_t>(custom - words.begin())];
        meaning.label = custom->starts_with("X-") && custom->size() > 2 ? written.substr(2) : written;
    } else if (entries == Entries::telephones && contains(words, kVoice)) {
        meaning.label = std::string();
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
    return label.empty() && entries == Entries::telephones ? std::vector{kVoice}
                                                           : std::vector<std::string_view>();
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

std::string_view relationType(std::string_view label) {
    for (const Relation& relation : kRelations) {
        if (relation.use == Use::written && relation.label == label) {
            return relation.type;
        }
    }
    return {};
}

} // namespace addressbook::vcard

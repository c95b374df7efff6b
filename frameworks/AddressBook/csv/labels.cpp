#include "frameworks/AddressBook/csv/labels.h"

#include "frameworks/AddressBook/values/text.h"

#include <algorithm>
#include <array>

namespace addressbook::csv {
namespace {

// The first row of a label is how it is written; the others are read as well.
struct Word {
    std::string_view word, label;
};
constexpr std::array kWords{
    Word{"Home", "_$!<Home>!$_"},
    Word{"Personal", "_$!<Home>!$_"},
    Word{"Private", "_$!<Home>!$_"},
    Word{"Work", "_$!<Work>!$_"},
    Word{"Business", "_$!<Work>!$_"},
    Word{"Other", "_$!<Other>!$_"},
    Word{"Mobile", "_$!<Mobile>!$_"},
    Word{"Cell", "_$!<Mobile>!$_"},
    Word{"Main", "_$!<Main>!$_"},
    Word{"Company Main", "_$!<Main>!$_"},
    Word{"Home Fax", "_$!<HomeFAX>!$_"},
    Word{"Work Fax", "_$!<WorkFAX>!$_"},
    Word{"Business Fax", "_$!<WorkFAX>!$_"},
    Word{"Other Fax", "_$!<OtherFAX>!$_"},
    Word{"Fax", "_$!<OtherFAX>!$_"},
    Word{"Pager", "_$!<Pager>!$_"},
    Word{"Home Page", "_$!<HomePage>!$_"},
    Word{"Anniversary", "_$!<Anniversary>!$_"},
    Word{"Father", "_$!<Father>!$_"},
    Word{"Mother", "_$!<Mother>!$_"},
    Word{"Parent", "_$!<Parent>!$_"},
    Word{"Brother", "_$!<Brother>!$_"},
    Word{"Sister", "_$!<Sister>!$_"},
    Word{"Child", "_$!<Child>!$_"},
    Word{"Friend", "_$!<Friend>!$_"},
    Word{"Spouse", "_$!<Spouse>!$_"},
    Word{"Partner", "_$!<Partner>!$_"},
    Word{"Assistant", "_$!<Assistant>!$_"},
    Word{"Manager", "_$!<Manager>!$_"},
};

} // namespace

std::string squeezed(std::string_view text) {
    std::string folded = fold(text);
    std::erase_if(folded, [](char c) {
        return static_cast<unsigned char>(c) < 0x80 && (c < 'a' || c > 'z') && (c < '0' || c > '9');
    });
    return folded;
}

std::string labelFrom(std::string_view word) {
    const std::string wanted = squeezed(word);
    const auto* found = std::find_if(kWords.begin(), kWords.end(),
                                     [&](const Word& row) { return squeezed(row.word) == wanted; });
    return std::string(found == kWords.end() ? word : found->label);
}

std::string wordFor(std::string_view label) {
    const auto* found =
        std::find_if(kWords.begin(), kWords.end(), [&](const Word& row) { return row.label == label; });
    return std::string(found == kWords.end() ? label : found->word);
}

} // namespace addressbook::csv

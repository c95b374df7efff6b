#pragma once

// Writing an address book, or a group of it, as vCards.

#include "frameworks/AddressBook/store/progress.h"
#include "frameworks/AddressBook/store/store.h"
#include "frameworks/AddressBook/vcard/vcard.h"
#include "tools/addressbook/output.h"

#include <cstddef>
#include <string>

namespace addressbook::tool {

struct ExportSummary {
    std::size_t people = 0, groups = 0;
};

// How a file says which groups people are in: by cards of groups, by the CATEGORIES of people's cards.
struct ExportForm {
    bool groupCards = true, categories = true;
    vcard::WrittenVersion version = vcard::WrittenVersion::v3;
};

// Writes all people and groups; with a [group] (its name or unique id) that group, its subgroups and their
// members. People come before groups. Throws Failure when there is no such group.
ExportSummary exportCards(const Store& store, const std::string& group, const ExportForm& form,
                          Output& output, const Progress& progress = {});

} // namespace addressbook::tool

#pragma once

#include <cstddef>
#include <filesystem>

namespace bench {

// Makes the address book of [people] generated people and their groups in [folder], which must exist, by way
// of the store, with 50,000 people a save. Throws addressbook::StoreError.
void makeStoreBook(const std::filesystem::path& folder, std::size_t people);

// Has the book in [folder] index the endings of people's last names, or not. Throws addressbook::StoreError.
void indexEndings(const std::filesystem::path& folder, bool wanted);

} // namespace bench

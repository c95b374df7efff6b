#pragma once

// The part of a repair that reads what can be read.

#include "frameworks/AddressBook/store/impl.h"
#include "frameworks/AddressBook/store/progress.h"

#include <filesystem>
#include <string>
#include <vector>

namespace addressbook {

// Writes whatever can be read of [damaged], a copy of a damaged book, into the new book [made], and changes the copy
// while it tries; errors name [file]. Returns a sentence for each thing that is lost or doubtful. Throws StoreError when
// nothing can be read, or when room or memory runs out.
std::vector<std::string> rescue(const std::filesystem::path& file, const std::filesystem::path& damaged,
                                Store::Impl& made, const Progress& progress);

} // namespace addressbook

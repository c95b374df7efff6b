#pragma once

// Writing the people of an address book, or of a group of it, as CSV.

#include "tools/addressbook/export.h"

namespace addressbook::tool {

// People alone have rows; the groups that they are in are named there. [group] as for exportCards().
ExportSummary exportTable(const Store& store, const std::string& group, Output& output,
                          const Progress& progress = {});

} // namespace addressbook::tool

#pragma once

// A step from one schema version to the next: dates without a time, which were moments, become days.

#include "frameworks/AddressBook/store/sql/sql.h"

namespace addressbook {

// Makes floating dates of the birthdays and of the other dates that were days (noon in this process's time
// zone), in the records and in the index of values. A birthday that is noon in another time zone was written
// there. Records that cannot be read stay as they are. Requires a write transaction; throws StoreError.
void floatDates(sql::Connection& connection);

} // namespace addressbook

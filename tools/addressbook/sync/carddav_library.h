#pragma once

// The library by which servers are asked.

#include "frameworks/AddressBook/carddav/library.h"

namespace addressbook::tool {

// Returns the functions of the library, which the first call loads. Throws Failure when it is not there.
const carddav::Library& carddavLibrary();

} // namespace addressbook::tool

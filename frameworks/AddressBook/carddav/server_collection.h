#pragma once

// An address book on a CardDAV server.

#include "frameworks/AddressBook/carddav/collection.h"
#include "frameworks/AddressBook/carddav/collection_options.h"
#include "frameworks/AddressBook/carddav/http.h"

#include <memory>
#include <string>

namespace addressbook::carddav {

// Returns the address book at [url], a Book::url. Asks nothing yet. [client] must live as long, and trusts the address
// from now on. Throws Error (refused) when [url] is no address.
std::unique_ptr<Collection> openCollection(Client& client, const std::string& url,
                                           CollectionOptions options = {});

} // namespace addressbook::carddav

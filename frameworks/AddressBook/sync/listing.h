#pragma once

// What the server says has changed since the last cycle, less what is known already.

#include "frameworks/AddressBook/sync/session.h"

#include <cstddef>
#include <string>
#include <vector>

namespace addressbook::sync {

struct Listing {
    std::vector<std::string> changed; // hrefs of cards to fetch
    std::vector<std::string> gone;    // hrefs of cards that have a link
    std::string state;                // to ask with the next time
};

// Asks the server. A card with the etag of its link is known: an own save, or one that a run fetched that ended before
// it was done.
Listing readListing(Session& session);

// Returns how many cards of records the collection has.
std::size_t countCards(const Session& session);

} // namespace addressbook::sync

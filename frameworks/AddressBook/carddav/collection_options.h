#pragma once

// How an address book on a server is read.

#include <cstddef>

namespace addressbook::carddav {

struct CollectionOptions {
    std::size_t batch = 100;                           // cards of one request
    std::size_t maxCard = 64UL * 1024 * 1024;          // bytes
    std::size_t maxListing = 2UL * 1024 * 1024 * 1024; // bytes of what changes() reads at once
};

} // namespace addressbook::carddav

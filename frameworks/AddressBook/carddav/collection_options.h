#pragma once

// How an address book on a server is read.

#include <chrono>
#include <cstddef>

namespace addressbook::carddav {

struct CollectionOptions {
    std::size_t batch = 100;                           // cards of one request
    std::size_t maxCard = 64UL * 1024 * 1024;          // bytes
    std::size_t maxListing = 2UL * 1024 * 1024 * 1024; // bytes of what changes() reads at once
    // How long a server may say nothing before it lists: small ones look at every card the first time.
    std::chrono::seconds listingTimeout{900};
};

} // namespace addressbook::carddav

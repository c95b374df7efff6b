#pragma once

// Asks for properties.

#include "frameworks/AddressBook/carddav/http.h"
#include "frameworks/AddressBook/carddav/multistatus.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook::carddav {

// Returns the request for properties of a resource, and with [depth] 1 of those in it.
Request propfind(const std::string& url, int depth, std::initializer_list<std::string_view> properties);

// A small answer to it, as a whole.
struct Resources {
    std::string url; // that answered, after redirects
    std::vector<Resource> resources;
};

// Makes the request. Throws Error.
Resources readResources(Client& client, Request request);

} // namespace addressbook::carddav

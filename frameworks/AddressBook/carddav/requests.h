#pragma once

// The bodies of requests (RFC 4918, 5689, 6352, 6578). Names are written as "{namespace}local"; see names.h.

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace addressbook::carddav {

// Asks for properties: PROPFIND.
std::string propfindBody(std::initializer_list<std::string_view> properties);

// Asks what changed since [token], empty for everything: REPORT sync-collection.
std::string syncBody(const std::string& token);

// Asks for the cards of [hrefs]: REPORT addressbook-multiget.
std::string multigetBody(std::span<const std::string> hrefs);

// Makes an address book of this name: extended MKCOL.
std::string makeBookBody(const std::string& name);

} // namespace addressbook::carddav

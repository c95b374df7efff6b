#pragma once

// Addresses: of servers, and the hrefs by which a server names its resources.

#include <optional>
#include <string>
#include <string_view>

namespace addressbook::carddav {

// The parts of an http or https address that decide where a request goes.
struct Url {
    std::string scheme; // "http" or "https"
    std::string host;   // in small letters; IPv6 in brackets
    int port = 0;
    std::string path; // with the query; at least "/"

    // Returns "https://host:port", without the port where it is the scheme's own.
    [[nodiscard]] std::string origin() const {
        const bool usual = port == (scheme == "https" ? 443 : 80);
        return scheme + "://" + host + (usual ? "" : ':' + std::to_string(port));
    }

    // Whether requests stay on this machine: localhost, 127.0.0.0/8, ::1.
    [[nodiscard]] bool isLoopback() const;
};

// Returns the parts of an absolute address; nothing when it is none of http or https, or names a user.
std::optional<Url> parseUrl(const std::string& address);

// Returns the absolute address that [reference] (an address, a path, a relative path) means in an answer from [base];
// nothing when it means none.
std::optional<std::string> resolve(const std::string& base, std::string_view reference);

// Returns the form in which two hrefs of one server are compared, stored and sent: the path, without scheme and host,
// without dot segments; of its bytes the unreserved ones, "@" and "/" stand for themselves, all others are
// percent-encoded with capitals. Nothing when it is no href.
std::optional<std::string> normalHref(const std::string& base, std::string_view href);

// Returns [bytes] with everything percent-encoded that is not an unreserved character (RFC 3986, 2.3) or "@".
std::string percentEncode(std::string_view bytes);

} // namespace addressbook::carddav

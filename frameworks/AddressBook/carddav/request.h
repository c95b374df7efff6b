#pragma once

// A request, its answer, and how a client goes about them.

#include "frameworks/AddressBook/carddav/secret.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace addressbook::carddav {

struct Request {
    std::string method;               // "PROPFIND", "REPORT", "GET", "PUT", "DELETE", "MKCOL"
    std::string url;                  // absolute
    std::vector<std::string> headers; // "Name: value"
    std::string body;
    // Is given the body of a successful answer, unpacked, in pieces as they come; Answer::body is empty then. What it
    // throws ends the request: an Error is the request's, anything else leaves Client::run().
    std::function<void(std::string_view)> receive;
    std::size_t maxAnswer = 16UL * 1024 * 1024; // bytes of the body, unpacked
    std::chrono::seconds stallTimeout{0};       // 0: that of the client
};

struct Answer {
    int status = 0;
    std::string url;                                          // that answered, after redirects
    std::vector<std::pair<std::string, std::string>> headers; // names in small letters
    std::string body;

    // Returns the value of a header, [name] in small letters; empty when there is none.
    [[nodiscard]] std::string header(std::string_view name) const {
        for (const auto& [header, value] : headers) {
            if (header == name) {
                return value;
            }
        }
        return {};
    }
};

// Who asks. All empty: nobody.
struct Credentials {
    std::string user;
    // Is asked once, before the first request; Basic or Digest, as the server asks. May throw, which leaves the call
    // that made the request.
    std::function<Secret()> password;
    // Instead of a password: a token. Is asked before the first request, and once more with true when the server does
    // not accept the token, to renew it.
    std::function<Secret(bool renew)> bearer;
};

struct ClientOptions {
    std::filesystem::path caFile; // PEM: authorities that are trusted besides the system's; empty: none
    bool allowHttp = false;       // plain http to other machines, too
    std::chrono::milliseconds connectTimeout{20'000};
    std::chrono::seconds stallTimeout{120}; // in which fewer than 10 bytes a second came or went
    std::chrono::seconds maxWait{60};       // what the server may ask to wait, at once, when it is busy
    int maxRetries = 3;                     // of one request, when the server is busy
    std::size_t requestsAtOnce = 8;
    std::size_t connections = 4;
    const std::atomic<bool>* stop = nullptr; // when it becomes true, what runs ends within about 0.1 s
};

} // namespace addressbook::carddav

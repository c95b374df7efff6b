#pragma once

// HTTP for one account: several requests at once over connections that are kept, HTTP/2 where the server has it, packed
// answers. One thread.
//
// The password goes to hosts that trust() was told of, and to no other: a redirect to another host is followed without
// it, and never from https to http. Redirects 301, 302, 307 and 308 keep the method and the body.

#include "frameworks/AddressBook/carddav/error.h"
#include "frameworks/AddressBook/carddav/request.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace addressbook::carddav {

// What became of a request.
struct Result {
    Answer answer;              // as far as it came
    std::optional<Error> error; // set when the status is not 2xx, too
};

class Client {
  public:
    explicit Client(ClientOptions options = {}, Credentials credentials = {});
    ~Client();
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    // Lets the password go to the origin (scheme, host and port) of an address, and from http to https of that host.
    void trust(const std::string& url);

    // Makes the request and waits for its answer. Throws the Error when it has one. Not inside a callback.
    Answer perform(Request request);

    // Adds a request; run() makes it, and calls [done] on this thread. [done] may add others, and throw.
    void send(Request request, std::function<void(Result&&)> done);

    // Makes the requests that were added, until none is left. When it throws (Error stopped, or what a callback threw),
    // the requests that are left are given up without a call of their [done]: what became of them is not known.
    void run();

    [[nodiscard]] const ClientOptions& options() const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace addressbook::carddav

#pragma once

// Makes writes, several at once.

#include "frameworks/AddressBook/carddav/collection.h"
#include "frameworks/AddressBook/carddav/http.h"

#include <cstddef>
#include <optional>
#include <string>

namespace addressbook::carddav {

class Writer {
  public:
    // [url] of the address book. All must live as long as this object.
    Writer(Client& client, const std::string& url, const std::function<std::optional<Write>()>& next,
           const std::function<void(const Write&, Written&&)>& done);

    // Makes all writes that [next] gives. Throws Error for what concerns the server, once those are done that are on
    // their way.
    void run();

  private:
    void fill();
    void ask(const Write& write, const std::string& etag);
    void finish(const Write& write, const std::string& etag, Result&& result);
    [[nodiscard]] Written readAnswer(const Write& write, const Answer& answer) const;

    Client& client_;
    const std::string& url_;
    const std::function<std::optional<Write>()>& next_;
    const std::function<void(const Write&, Written&&)>& done_;
    std::size_t inFlight_ = 0;
    bool exhausted_ = false; // [next] gave nothing
    std::optional<Error> fatal_;
};

} // namespace addressbook::carddav

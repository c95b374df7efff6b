#pragma once

// Fetches cards: batch by batch with multiget, several batches at once; what a batch fails with is looked for in halves,
// so that one bad card keeps back no other.

#include "frameworks/AddressBook/carddav/collection.h"
#include "frameworks/AddressBook/carddav/collection_options.h"
#include "frameworks/AddressBook/carddav/http.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace addressbook::carddav {

class Fetcher {
  public:
    // [url] of the address book. All must live as long as this object.
    Fetcher(Client& client, const std::string& url, const CollectionOptions& options,
            const std::function<std::optional<std::string>()>& next,
            const std::function<void(Fetched&&)>& each);

    // Fetches all that [next] gives. Throws Error for what concerns the server or the address book.
    void run();

  private:
    using Hrefs = std::vector<std::string>;

    void fill();
    void ask(Hrefs hrefs);
    void finish(const std::shared_ptr<std::set<std::string>>& open, Result&& result);
    void split(const std::set<std::string>& open, const Error& error);
    void get(const std::string& href);
    void deliver(Fetched fetched);
    void fail(const Error& error);

    Client& client_;
    const std::string& url_;
    const CollectionOptions& options_;
    const std::function<std::optional<std::string>()>& next_;
    const std::function<void(Fetched&&)>& each_;
    std::size_t inFlight_ = 0; // requests
    bool exhausted_ = false;   // [next] gave nothing
    bool multiget_ = true;     // the server knows it
    int failures_ = 0;         // one after the other, with no card between them
    std::optional<Error> fatal_;
};

} // namespace addressbook::carddav

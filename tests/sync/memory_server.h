#pragma once

// A server in memory, with the faults that servers have, and the address book on it as a program sees it.

#include "frameworks/AddressBook/carddav/collection.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace addressbook::sync::test {

// What a server holds, and how it behaves. Several collections may be opened on it.
struct MemoryServer {
    struct Resource {
        std::string text, etag;
        std::int64_t version = 0;
    };
    std::map<std::string, Resource> cards;    // by href
    std::map<std::string, std::int64_t> gone; // href -> version
    std::int64_t version = 0;

    bool hasTokens = true;                                  // else a listing tells all or nothing
    bool tellsEtags = true;                                 // in listings and with cards
    bool answersEtags = true;                               // after a write
    bool forgetsTokens = false;                             // at the next question
    std::size_t piece = 0;                                  // so many changes are told at once; 0: all
    std::function<std::string(const std::string&)> rewrite; // what is stored of what is sent

    // A change by another client.
    void put(const std::string& href, const std::string& text);
    void remove(const std::string& href);
    [[nodiscard]] std::string textOf(const std::string& href) const;
    // Returns the href of the card whose text has this line; empty when there is none.
    [[nodiscard]] std::string hrefOf(const std::string& line) const;
};

class MemoryCollection : public carddav::Collection {
  public:
    explicit MemoryCollection(MemoryServer& server) : server_(server) {}

    carddav::Changes changes(const std::string& state,
                             const std::function<void(carddav::Change&&)>& each) override;
    void fetch(const std::function<std::optional<std::string>()>& next,
               const std::function<void(carddav::Fetched&&)>& each) override;
    void write(const std::function<std::optional<carddav::Write>()>& next,
               const std::function<void(const carddav::Write&, carddav::Written&&)>& done) override;
    [[nodiscard]] std::string hrefFor(const std::string& uid) const override {
        return "/book/" + uid + ".vcf";
    }

    // Called before each request ("list", "get HREF", "put HREF", "delete HREF") and after it was made, before its answer
    // comes ("answer ..."): may change the server, or throw.
    std::function<void(const std::string& what)> onRequest;
    // The error that the server answers to a write instead of making it; nothing: it makes it.
    std::function<std::optional<carddav::Error>(const carddav::Write&)> onWrite;
    std::vector<std::string> requests; // as onRequest is told of them, without the answers
    bool tellsConflictingHref = true;
    bool answersAreLost = false; // a write is made, and the error is network

  private:
    void begin(const std::string& what);
    void end(const std::string& what);
    carddav::Written make(const carddav::Write& write);

    MemoryServer& server_;
};

} // namespace addressbook::sync::test

#pragma once

// A CardDAV server with address books of its own, in memory, that does everything right; or, where a test wants, wrong.

#include "tests/carddav/server.h"

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace carddav_test {

// What servers do differently, all of it allowed or at least met with.
struct Habits {
    bool syncTokens = true; // otherwise only the collection's tag tells of changes
    bool tellsEtag = true;  // in the answer to a PUT
    std::function<std::string(const std::string&)> store = [](const std::string& card) { return card; };
    std::function<std::string(const std::string&)> etag = [](const std::string& number) {
        return '"' + number + '"';
    };
    // [origin] is the server's address without a path.
    std::function<std::string(const std::string& path, const std::string& origin)> href =
        [](const std::string& path, const std::string&) { return path; };
};

// Its user is ida, whose password is s3cret and whose books are friends and work.
class BookServer {
  public:
    // Answers instead of the server, or leaves the answer to it.
    using Fault = std::function<std::optional<Reply>(const Received&)>;

    static constexpr const char* kHome = "/ida/";
    static constexpr const char* kFriends = "/ida/friends/";
    static constexpr const char* kWork = "/ida/work/";

    explicit BookServer(Habits habits = {}, const Certificate* certificate = nullptr);

    [[nodiscard]] std::string url(const std::string& path = "/") const { return server_.url(path); }
    [[nodiscard]] std::vector<Received> received() const { return server_.received(); }

    // From now on the server is [fault]; an empty function: well again.
    void fail(Fault fault);
    // Forgets all sync tokens that it gave.
    void forgetTokens();

    // What another client does.
    void put(const std::string& path, const std::string& card);
    void remove(const std::string& path);

    // Returns the cards that are there, by path.
    [[nodiscard]] std::map<std::string, std::string> cards() const;

  private:
    struct Card {
        std::string text;
        int change = 0; // the last one, which is its etag
    };
    // A card's path, or that of one that is gone, with the number of its last change.
    using Changed = std::map<std::string, int>;

    Reply answer(const Received& received);
    Reply serve(const Received& received);
    Reply propfind(const Received& received) const;
    Reply report(const Received& received) const;
    Reply changes(const std::string& book, const std::string& token) const;
    Reply multiget(const std::string& body) const;
    Reply write(const Received& received);
    Reply makeBook(const Received& received);
    [[nodiscard]] std::string hrefOf(const std::string& path) const;
    [[nodiscard]] std::string describe(const std::string& book) const; // its path
    [[nodiscard]] std::string token() const;
    void store(const std::string& path, const std::string& card);
    void erase(const std::string& path);

    Habits habits_;
    mutable std::mutex mutex_; // of what follows
    Fault fault_;
    std::map<std::string, std::string> books_ = {{kFriends, "friends"}, {kWork, "work"}}; // names by path
    std::map<std::string, Card> cards_;
    Changed changed_;
    int change_ = 0;
    int generation_ = 1; // of tokens
    Server server_;      // the last: its threads use the others
};

} // namespace carddav_test

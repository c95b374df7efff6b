#pragma once

// A server for HTTP/1.1 on this machine that answers what a test wants, however wrong.

#include "tests/carddav/certificate.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace carddav_test {

struct Received {
    std::string method, target;
    std::map<std::string, std::string> headers; // names in small letters
    std::string body;
    int connection = 0; // the first is 1

    // Returns the value of a header; empty when it did not come.
    [[nodiscard]] std::string header(const std::string& name) const {
        const auto at = headers.find(name);
        return at == headers.end() ? std::string() : at->second;
    }
    [[nodiscard]] bool has(const std::string& name) const { return headers.contains(name); }
};

struct Reply {
    int status = 200;
    std::string body = {};
    std::vector<std::string> headers = {};            // "Name: value"
    std::chrono::milliseconds delay{0};               // before anything is answered
    std::string::size_type cutAt = std::string::npos; // of the body, after which the connection is closed
    std::string raw = {};                             // instead of all that
};

// An answer 207 with [inside] between the tags of a multistatus; prefix D is DAV:, C is CardDAV, S the older namespace.
Reply multistatus(const std::string& inside);

// A response in it whose properties, all found, are [properties].
std::string response(const std::string& href, const std::string& properties);

class Server {
  public:
    using Script = std::function<Reply(const Received&)>;

    // Answers by [script], which is called in threads of the server's own, one call at a time; with TLS when there is a
    // certificate, which must live as long.
    explicit Server(Script script, const Certificate* certificate = nullptr);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    [[nodiscard]] int port() const { return port_; }
    // Returns an address on the server, whose host is 127.0.0.1 or another name of this machine.
    [[nodiscard]] std::string url(const std::string& path = "/", const std::string& host = "127.0.0.1") const;
    // Returns all requests so far, in the order in which they came.
    [[nodiscard]] std::vector<Received> received() const;
    [[nodiscard]] int connections() const { return connections_; }
    // Returns the most requests that were being answered at the same time.
    [[nodiscard]] int mostAtOnce() const { return mostAtOnce_; }

  private:
    class Channel;

    void accept();
    void serve(int socket, int number);
    bool answer(Channel& channel, const Received& received);

    Script script_;
    const Certificate* certificate_;
    int listening_ = -1, port_ = 0;
    std::atomic<int> connections_{0}, atOnce_{0}, mostAtOnce_{0};
    mutable std::mutex mutex_; // of what follows
    std::condition_variable ending_;
    bool ended_ = false;
    std::vector<Received> received_;
    std::vector<int> sockets_;
    std::vector<std::thread> threads_;
    std::mutex scripting_;
    std::thread accepting_;
};

} // namespace carddav_test

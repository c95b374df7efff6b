#include "tests/carddav/server.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cctype>
#include <csignal>
#include <cstdlib>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace carddav_test {

Reply multistatus(const std::string& inside) {
    return {207,
            R"(<?xml version="1.0" encoding="utf-8"?><D:multistatus xmlns:D="DAV:" )"
            R"(xmlns:C="urn:ietf:params:xml:ns:carddav" xmlns:S="http://calendarserver.org/ns/">)" +
                inside + "</D:multistatus>",
            {"Content-Type: application/xml; charset=utf-8"}};
}

std::string response(const std::string& href, const std::string& properties) {
    return "<D:response><D:href>" + href + "</D:href><D:propstat><D:prop>" + properties +
           "</D:prop><D:status>HTTP/1.1 200 OK</D:status></D:propstat></D:response>";
}

// Bytes over a connection, with or without TLS.
class Server::Channel {
  public:
    Channel(int socket, const Certificate* certificate) : socket_(socket) {
        if (certificate != nullptr) {
            gnutls_init(&session_, GNUTLS_SERVER);
            gnutls_set_default_priority(session_);
            gnutls_credentials_set(session_, GNUTLS_CRD_CERTIFICATE, certificate->credentials());
            gnutls_transport_set_int(session_, socket_);
            int code = 0;
            do {
                code = gnutls_handshake(session_);
            } while (code < 0 && gnutls_error_is_fatal(code) == 0);
            usable_ = code >= 0;
        }
    }
    ~Channel() {
        if (session_ != nullptr) {
            gnutls_deinit(session_);
        }
    }
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    bool write(std::string_view bytes) {
        while (usable_ && !bytes.empty()) {
            const ssize_t count = session_ != nullptr
                                      ? gnutls_record_send(session_, bytes.data(), bytes.size())
                                      : send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            usable_ = count > 0;
            bytes.remove_prefix(usable_ ? static_cast<std::size_t>(count) : 0);
        }
        return usable_;
    }

    // The next request; false at the end of the connection.
    bool read(Received& received) {
        std::size_t head = std::string::npos;
        while ((head = buffer_.find("\r\n\r\n")) == std::string::npos) {
            if (!more()) {
                return false;
            }
        }
        parse(received, buffer_.substr(0, head + 2));
        buffer_.erase(0, head + 4);
        const std::string length = received.header("content-length");
        const std::size_t size = length.empty() ? 0 : std::stoul(length);
        while (buffer_.size() < size) {
            if (!more()) {
                return false;
            }
        }
        received.body = buffer_.substr(0, size);
        buffer_.erase(0, size);
        return true;
    }

  private:
    bool more() {
        std::string piece(16384, '\0');
        const ssize_t count = !usable_              ? -1
                              : session_ != nullptr ? gnutls_record_recv(session_, piece.data(), piece.size())
                                                    : recv(socket_, piece.data(), piece.size(), 0);
        usable_ = count > 0;
        buffer_ += piece.substr(0, usable_ ? static_cast<std::size_t>(count) : 0);
        return usable_;
    }

    static void parse(Received& received, const std::string& head) {
        std::size_t at = head.find("\r\n");
        const std::string line = head.substr(0, at);
        received.method = line.substr(0, line.find(' '));
        received.target = line.substr(line.find(' ') + 1, line.rfind(' ') - line.find(' ') - 1);
        for (at += 2; at < head.size();) {
            const std::size_t end = head.find("\r\n", at);
            const std::size_t colon = head.find(':', at);
            std::string name = head.substr(at, colon - at);
            std::transform(name.begin(), name.end(), name.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
            received.headers[name] = head.substr(colon + 2, end - colon - 2);
            at = end + 2;
        }
    }

    int socket_;
    gnutls_session_t session_ = nullptr;
    bool usable_ = true;
    std::string buffer_;
};

Server::Server(Script script, const Certificate* certificate)
    : script_(std::move(script)), certificate_(certificate) {
    setenv("no_proxy", "*", 1);
    std::signal(SIGPIPE, SIG_IGN); // of TLS, whose client went away
    listening_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(listening_, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listening_, 64) != 0 ||
        getsockname(listening_, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        throw std::runtime_error("no port can be listened on");
    }
    port_ = ntohs(address.sin_port);
    accepting_ = std::thread([this] { accept(); });
}

Server::~Server() {
    {
        const std::lock_guard lock(mutex_);
        ended_ = true;
        ending_.notify_all();
        shutdown(listening_, SHUT_RDWR);
        for (const int socket : sockets_) {
            shutdown(socket, SHUT_RDWR);
        }
    }
    accepting_.join();
    for (std::thread& thread : threads_) {
        thread.join();
    }
    for (const int socket : sockets_) {
        close(socket);
    }
    close(listening_);
}

std::string Server::url(const std::string& path, const std::string& host) const {
    return (certificate_ != nullptr ? "https://" : "http://") + host + ':' + std::to_string(port_) + path;
}

std::vector<Received> Server::received() const {
    const std::lock_guard lock(mutex_);
    return received_;
}

void Server::accept() {
    for (;;) {
        const int socket = accept4(listening_, nullptr, nullptr, SOCK_CLOEXEC);
        const std::lock_guard lock(mutex_);
        if (socket < 0 || ended_) {
            if (socket >= 0) {
                close(socket);
            }
            return;
        }
        sockets_.push_back(socket);
        const int number = ++connections_;
        threads_.emplace_back([this, socket, number] { serve(socket, number); });
    }
}

void Server::serve(int socket, int number) {
    Channel channel(socket, certificate_);
    for (Received received; channel.read(received); received = {}) {
        received.connection = number;
        {
            const std::lock_guard lock(mutex_);
            received_.push_back(received);
        }
        const int now = ++atOnce_;
        for (int most = mostAtOnce_; now > most && !mostAtOnce_.compare_exchange_weak(most, now);) {
        }
        const bool goesOn = answer(channel, received);
        --atOnce_;
        if (!goesOn) {
            break;
        }
    }
    shutdown(socket, SHUT_RDWR);
}

bool Server::answer(Channel& channel, const Received& received) {
    Reply reply;
    {
        const std::lock_guard lock(scripting_);
        reply = script_(received);
    }
    if (reply.delay.count() > 0) {
        std::unique_lock lock(mutex_);
        ending_.wait_for(lock, reply.delay, [this] { return ended_; });
        if (ended_) {
            return false;
        }
    }
    if (!reply.raw.empty()) {
        channel.write(reply.raw);
        return false;
    }
    std::string head = "HTTP/1.1 " + std::to_string(reply.status) + " Whatever\r\n";
    for (const std::string& header : reply.headers) {
        head += header + "\r\n";
    }
    if (reply.status != 204) {
        head += "Content-Length: " + std::to_string(reply.body.size()) + "\r\n";
    }
    return channel.write(head + "\r\n" + reply.body.substr(0, reply.cutAt)) &&
           reply.cutAt == std::string::npos;
}

} // namespace carddav_test

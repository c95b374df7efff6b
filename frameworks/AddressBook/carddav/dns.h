#pragma once

// Where the server of a mail domain is (RFC 6764): SRV and TXT records.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook::carddav {

// An SRV record (RFC 2782).
struct Service {
    int priority = 0; // the lowest first
    int weight = 0;   // of one priority, the heaviest first
    int port = 0;
    std::string host; // without a dot at the end
};

class Dns {
  public:
    virtual ~Dns() = default;

    // Return the records of a name, as "_carddavs._tcp.example.com"; none when it has none or cannot be looked up.
    // Services come in the order in which they are tried.
    [[nodiscard]] virtual std::vector<Service> services(const std::string& name) const = 0;
    [[nodiscard]] virtual std::vector<std::string> texts(const std::string& name) const = 0;
};

// Asks the name servers of this machine. Takes at most some seconds.
class SystemDns : public Dns {
  public:
    [[nodiscard]] std::vector<Service> services(const std::string& name) const override;
    [[nodiscard]] std::vector<std::string> texts(const std::string& name) const override;
};

// Return the records of a name server's answer, a message as RFC 1035, 4 has it; none when it is none. A single service
// of the host "." says that there is none.
std::vector<Service> readServices(std::string_view message);
std::vector<std::string> readTexts(std::string_view message);

} // namespace addressbook::carddav

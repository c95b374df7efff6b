#pragma once

// A certificate that nobody signed but itself, made for one test.

#include <gnutls/gnutls.h>

#include <string>

namespace carddav_test {

class Certificate {
  public:
    // For the name localhost and the address 127.0.0.1, valid for a day from now on.
    Certificate();
    ~Certificate();
    Certificate(const Certificate&) = delete;
    Certificate& operator=(const Certificate&) = delete;

    // Returns it as PEM, for those who are to trust it.
    [[nodiscard]] const std::string& pem() const { return pem_; }

    // Returns it with its key, for a server.
    [[nodiscard]] gnutls_certificate_credentials_t credentials() const { return credentials_; }

  private:
    gnutls_certificate_credentials_t credentials_ = nullptr;
    std::string pem_;
};

} // namespace carddav_test

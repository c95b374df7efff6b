#include "tests/carddav/certificate.h"

#include <gnutls/x509.h>

#include <array>
#include <ctime>
#include <stdexcept>

namespace carddav_test {
namespace {

void check(int code) {
    if (code < 0) {
        throw std::runtime_error(gnutls_strerror(code));
    }
}

} // namespace

Certificate::Certificate() {
    gnutls_x509_privkey_t key = nullptr;
    check(gnutls_x509_privkey_init(&key));
    check(gnutls_x509_privkey_generate(key, GNUTLS_PK_ECDSA, GNUTLS_CURVE_TO_BITS(GNUTLS_ECC_CURVE_SECP256R1),
                                       0));
    gnutls_x509_crt_t certificate = nullptr;
    check(gnutls_x509_crt_init(&certificate));
    constexpr time_t kDay = 24L * 60 * 60;
    const time_t now = time(nullptr);
    constexpr std::array<unsigned char, 4> kAddress = {127, 0, 0, 1};
    constexpr unsigned char kSerial = 1;
    check(gnutls_x509_crt_set_version(certificate, 3));
    check(gnutls_x509_crt_set_serial(certificate, &kSerial, 1));
    check(gnutls_x509_crt_set_activation_time(certificate, now - kDay));
    check(gnutls_x509_crt_set_expiration_time(certificate, now + kDay));
    check(gnutls_x509_crt_set_dn(certificate, "CN=localhost", nullptr));
    check(gnutls_x509_crt_set_subject_alt_name(certificate, GNUTLS_SAN_DNSNAME, "localhost", 9,
                                               GNUTLS_FSAN_SET));
    check(gnutls_x509_crt_set_subject_alt_name(certificate, GNUTLS_SAN_IPADDRESS, kAddress.data(),
                                               kAddress.size(), GNUTLS_FSAN_APPEND));
    check(gnutls_x509_crt_set_basic_constraints(certificate, 1, -1));
    check(gnutls_x509_crt_set_key(certificate, key));
    check(gnutls_x509_crt_sign2(certificate, certificate, key, GNUTLS_DIG_SHA256, 0));
    gnutls_datum_t pem{};
    check(gnutls_x509_crt_export2(certificate, GNUTLS_X509_FMT_PEM, &pem));
    pem_.assign(reinterpret_cast<const char*>(pem.data), pem.size);
    gnutls_free(pem.data);
    check(gnutls_certificate_allocate_credentials(&credentials_));
    check(gnutls_certificate_set_x509_key(credentials_, &certificate, 1, key));
    gnutls_x509_crt_deinit(certificate);
    gnutls_x509_privkey_deinit(key);
}

Certificate::~Certificate() {
    gnutls_certificate_free_credentials(credentials_);
}

} // namespace carddav_test

#include "host/calc/crypt.h"

#include "host/values/text.h"

#include <algorithm>
#include <gnutls/abstract.h>
#include <gnutls/crypto.h>
#include <memory>

namespace host {

namespace {

struct Algorithm {
    std::u16string_view name; // folded
    gnutls_digest_algorithm_t hash;
    gnutls_mac_algorithm_t code;
};
constexpr Algorithm kAlgorithms[] = {
    {u"", GNUTLS_DIG_SHA512, GNUTLS_MAC_SHA512},       {u"md5", GNUTLS_DIG_MD5, GNUTLS_MAC_MD5},
    {u"sha1", GNUTLS_DIG_SHA1, GNUTLS_MAC_SHA1},       {u"sha224", GNUTLS_DIG_SHA224, GNUTLS_MAC_SHA224},
    {u"sha256", GNUTLS_DIG_SHA256, GNUTLS_MAC_SHA256}, {u"sha384", GNUTLS_DIG_SHA384, GNUTLS_MAC_SHA384},
    {u"sha512", GNUTLS_DIG_SHA512, GNUTLS_MAC_SHA512},
};

const Algorithm* algorithmOf(std::u16string_view name) {
    const std::u16string wanted = foldCase(name);
    const auto* found = std::find_if(std::begin(kAlgorithms), std::end(kAlgorithms),
                                     [&](const Algorithm& row) { return row.name == wanted; });
    return found == std::end(kAlgorithms) ? nullptr : found;
}

gnutls_datum_t datum(ByteView bytes) {
    return {const_cast<unsigned char*>(bytes.data()), static_cast<unsigned>(bytes.size())};
}

// The layout of encrypted data: salt, nonce, then the encrypted bytes with the authentication tag at the end.
constexpr size_t kSaltSize = 16;
constexpr size_t kNonceSize = 12;
constexpr size_t kTagSize = 16;
constexpr size_t kKeySize = 32;
constexpr unsigned kRounds = 100'000; // of deriving a key, so that guessing passwords takes long

class Cipher {
  public:
    Cipher(ByteView password, ByteView salt) {
        unsigned char key[kKeySize];
        const gnutls_datum_t passwordDatum = datum(password);
        const gnutls_datum_t saltDatum = datum(salt);
        gnutls_datum_t keyDatum{key, sizeof key};
        ready_ =
            gnutls_pbkdf2(GNUTLS_MAC_SHA256, &passwordDatum, &saltDatum, kRounds, key, sizeof key) == 0 &&
            gnutls_aead_cipher_init(&handle_, GNUTLS_CIPHER_AES_256_GCM, &keyDatum) == 0;
    }
    ~Cipher() {
        if (ready_) {
            gnutls_aead_cipher_deinit(handle_);
        }
    }
    Cipher(const Cipher&) = delete;
    Cipher& operator=(const Cipher&) = delete;

    // Return whether they succeeded. [size] is the capacity at [to], and becomes the number of bytes written.
    bool encrypt(ByteView nonce, ByteView data, unsigned char* to, size_t& size) const {
        return ready_ && gnutls_aead_cipher_encrypt(handle_, nonce.data(), nonce.size(), nullptr, 0, kTagSize,
                                                    data.data(), data.size(), to, &size) == 0;
    }
    bool decrypt(ByteView nonce, ByteView data, unsigned char* to, size_t& size) const {
        return ready_ && gnutls_aead_cipher_decrypt(handle_, nonce.data(), nonce.size(), nullptr, 0, kTagSize,
                                                    data.data(), data.size(), to, &size) == 0;
    }

  private:
    gnutls_aead_cipher_hd_t handle_ = nullptr;
    bool ready_ = false;
};

} // namespace

std::optional<Bytes> digest(ByteView data, std::u16string_view algorithm) {
    const Algorithm* row = algorithmOf(algorithm);
    if (row == nullptr) {
        return std::nullopt;
    }
    Bytes result(gnutls_hash_get_len(row->hash));
    return gnutls_hash_fast(row->hash, data.data(), data.size(), result.data()) == 0 ? std::optional(result)
                                                                                     : std::nullopt;
}

std::optional<Bytes> authenticationCode(ByteView data, std::u16string_view algorithm, ByteView key) {
    const Algorithm* row = algorithmOf(algorithm);
    if (row == nullptr) {
        return std::nullopt;
    }
    Bytes result(gnutls_hmac_get_len(row->code));
    const int failed =
        gnutls_hmac_fast(row->code, key.data(), key.size(), data.data(), data.size(), result.data());
    return failed == 0 ? std::optional(result) : std::nullopt;
}

std::optional<Bytes> encrypted(ByteView data, ByteView key) {
    Bytes result(kSaltSize + kNonceSize + data.size() + kTagSize);
    const ByteView all(result);
    if (gnutls_rnd(GNUTLS_RND_RANDOM, result.data(), kSaltSize + kNonceSize) != 0) {
        return std::nullopt;
    }
    const Cipher cipher(key, all.first(kSaltSize));
    size_t size = data.size() + kTagSize;
    const bool worked = cipher.encrypt(all.subspan(kSaltSize, kNonceSize), data,
                                       result.data() + kSaltSize + kNonceSize, size);
    return worked ? std::optional(std::move(result)) : std::nullopt;
}

std::optional<Bytes> decrypted(ByteView data, ByteView key) {
    if (data.size() < kSaltSize + kNonceSize + kTagSize) {
        return std::nullopt;
    }
    const Cipher cipher(key, data.first(kSaltSize));
    const ByteView body = data.subspan(kSaltSize + kNonceSize);
    Bytes result(body.size());
    size_t size = result.size();
    if (!cipher.decrypt(data.subspan(kSaltSize, kNonceSize), body, result.data(), size)) {
        return std::nullopt;
    }
    result.resize(size);
    return result;
}

std::optional<Bytes> signatureOf(ByteView data, std::u16string_view algorithm, ByteView privateKey,
                                 const std::string& password) {
    const Algorithm* row = algorithmOf(algorithm);
    gnutls_privkey_t handle = nullptr;
    if (row == nullptr || gnutls_privkey_init(&handle) != 0) {
        return std::nullopt;
    }
    const std::unique_ptr<gnutls_privkey_st, decltype(&gnutls_privkey_deinit)> key(handle,
                                                                                   gnutls_privkey_deinit);
    const gnutls_datum_t pem = datum(privateKey);
    const gnutls_datum_t message = datum(data);
    gnutls_datum_t signature{nullptr, 0};
    const char* secret = password.empty() ? nullptr : password.c_str();
    if (gnutls_privkey_import_x509_raw(key.get(), &pem, GNUTLS_X509_FMT_PEM, secret, 0) != 0 ||
        gnutls_privkey_get_pk_algorithm(key.get(), nullptr) != GNUTLS_PK_RSA ||
        gnutls_privkey_sign_data(key.get(), row->hash, 0, &message, &signature) != 0) {
        return std::nullopt;
    }
    Bytes result(signature.data, signature.data + signature.size);
    gnutls_free(signature.data);
    return result;
}

std::optional<bool> signatureFits(ByteView data, std::u16string_view algorithm, ByteView publicKey,
                                  ByteView signature) {
    const Algorithm* row = algorithmOf(algorithm);
    gnutls_pubkey_t handle = nullptr;
    if (row == nullptr || gnutls_pubkey_init(&handle) != 0) {
        return std::nullopt;
    }
    const std::unique_ptr<gnutls_pubkey_st, decltype(&gnutls_pubkey_deinit)> key(handle,
                                                                                 gnutls_pubkey_deinit);
    const gnutls_datum_t pem = datum(publicKey);
    const gnutls_datum_t message = datum(data);
    const gnutls_datum_t given = datum(signature);
    if (gnutls_pubkey_import(key.get(), &pem, GNUTLS_X509_FMT_PEM) != 0) {
        return std::nullopt;
    }
    const gnutls_sign_algorithm_t method = gnutls_pk_to_sign(GNUTLS_PK_RSA, row->hash);
    return gnutls_pubkey_verify_data2(key.get(), method, GNUTLS_VERIFY_ALLOW_BROKEN, &message, &given) >= 0;
}

} // namespace host

#pragma once

// Digests, authentication codes, encryption and signatures, by GnuTLS: it has all of them, also keys in PEM
// files with a password, and is based on Nettle, which is used for Base64.

#include "host/calc/byte_text.h"
#include "host/values/container.h"

#include <optional>
#include <string>
#include <string_view>

namespace host {

// In all functions, [algorithm] is MD5, SHA1, SHA224, SHA256, SHA384 or SHA512, in any letter case, or empty
// for SHA512.

// Return a digest of [data], and an authentication code (HMAC) with [key]; nothing for an unknown algorithm.
std::optional<Bytes> digest(ByteView data, std::u16string_view algorithm);
std::optional<Bytes> authenticationCode(ByteView data, std::u16string_view algorithm, ByteView key);

// Encrypt and decrypt by AES with 256 bits, with a key derived from [key] and random salt. Decrypting returns
// nothing for a wrong key, and for data that were changed.
std::optional<Bytes> encrypted(ByteView data, ByteView key);
std::optional<Bytes> decrypted(ByteView data, ByteView key);

// Returns a signature (PKCS #1) by an RSA key in PEM form; nothing when the key cannot be read.
std::optional<Bytes> signatureOf(ByteView data, std::u16string_view algorithm, ByteView privateKey,
                                 const std::string& password);
// Whether a signature of [data] is valid; nothing when the key cannot be read.
std::optional<bool> signatureFits(ByteView data, std::u16string_view algorithm, ByteView publicKey,
                                  ByteView signature);

} // namespace host

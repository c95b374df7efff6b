#pragma once

// Digests, authentication codes, encryption and signatures. GnuTLS does the work: it is the one library here
// that has all of them, keys in PEM files with a password included, and it stands on the Nettle that Base64
// comes from.

#include "host/calc/byte_text.h"
#include "host/values/container.h"

#include <optional>
#include <string>
#include <string_view>

namespace host {

// [algorithm] is MD5, SHA1, SHA224, SHA256, SHA384 or SHA512, in any letter case; empty means SHA512. Nothing
// for another one.
std::optional<Bytes> digest(ByteView data, std::u16string_view algorithm);
std::optional<Bytes> authenticationCode(ByteView data, std::u16string_view algorithm, ByteView key);

// AES with 256 bits and a key made of [key] and random salt. Decrypting answers nothing for a wrong key and
// for data that were changed.
std::optional<Bytes> encrypted(ByteView data, ByteView key);
std::optional<Bytes> decrypted(ByteView data, ByteView key);

// A signature by an RSA key (PKCS #1) in PEM form; nothing when the key cannot be read.
std::optional<Bytes> signatureOf(ByteView data, std::u16string_view algorithm, ByteView privateKey,
                                 const std::string& password);
// Whether a signature fits; nothing when the key cannot be read.
std::optional<bool> signatureFits(ByteView data, std::u16string_view algorithm, ByteView publicKey,
                                  ByteView signature);

} // namespace host

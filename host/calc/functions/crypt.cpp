// Digests, authentication codes, encryption and signatures of data: the files of containers, or texts in
// UTF-8.
#include "host/calc/crypt.h"

#include "host/calc/functions/data.h"
#include "host/calc/functions/groups.h"
#include "host/values/container_file.h"
#include "host/values/text.h"

#include <algorithm>

namespace host {

namespace {

Value fileOrFailure(std::optional<Bytes> bytes) {
    return bytes ? namelessFile(std::move(*bytes)) : Value::invalid();
}

Value cryptDigest(Session& /*session*/, Arguments in) {
    const DataBytes data(in[0]);
    return data.exist() ? fileOrFailure(digest(data.bytes(), in[1].asText())) : Value::invalid();
}

Value cryptAuthCode(Session& /*session*/, Arguments in) {
    const DataBytes data(in[0]);
    const DataBytes key(in[2]);
    return data.exist() && key.exist()
               ? fileOrFailure(authenticationCode(data.bytes(), in[1].asText(), key.bytes()))
               : Value::invalid();
}

// The layout of the data that are encrypted: a byte for text or file, a file's name and a 0, the bytes.
constexpr unsigned char kText = 'T';
constexpr unsigned char kFile = 'F';

std::optional<Bytes> encryptedValue(const Value& source, const Value& keyValue) {
    const DataBytes data(source);
    const DataBytes key(keyValue);
    if (!data.exist() || !key.exist() || key.bytes().empty()) {
        return std::nullopt;
    }
    Bytes plain;
    plain.reserve(data.bytes().size() + 2);
    const bool isFile = source.type() == ValueType::container;
    plain.push_back(isFile ? kFile : kText);
    if (isFile) {
        const std::string name = toUtf8(source.asContainer().fileNames().value_or(u""));
        plain.insert(plain.end(), name.begin(), name.end());
    }
    plain.push_back(0);
    plain.insert(plain.end(), data.bytes().begin(), data.bytes().end());
    return encrypted(plain, key.bytes());
}

Value decryptedValue(std::span<const unsigned char> bytes, const Value& keyValue) {
    const DataBytes key(keyValue);
    const auto plain = key.exist() ? decrypted(bytes, key.bytes()) : std::nullopt;
    if (!plain) {
        return Value::invalid();
    }
    const auto nameEnd = std::find(plain->begin() + 1, plain->end(), 0);
    if (nameEnd == plain->end()) {
        return Value::invalid();
    }
    Bytes contents(nameEnd + 1, plain->end());
    if (plain->front() == kText) {
        return Value::text(fromUtf8({reinterpret_cast<const char*>(contents.data()), contents.size()}));
    }
    const std::u16string name = fromUtf8(std::string(plain->begin() + 1, nameEnd));
    return name.empty() ? namelessFile(std::move(contents))
                        : Value::container(pictureContainer(name, std::move(contents)));
}

Value cryptEncrypt(Session& /*session*/, Arguments in) {
    auto bytes = encryptedValue(in[0], in[1]);
    return bytes ? Value::container(fileContainer(u"encrypted.data", std::move(*bytes))) : Value::invalid();
}

// Returns the encrypted data as Base64 in one line.
Value cryptEncryptBase64(Session& /*session*/, Arguments in) {
    const auto bytes = encryptedValue(in[0], in[1]);
    return bytes ? Value::text(base64Text(*bytes, 0)) : Value::invalid();
}

Value cryptDecrypt(Session& /*session*/, Arguments in) {
    const DataBytes data(in[0]);
    return data.exist() ? decryptedValue(data.bytes(), in[1]) : Value::invalid();
}

Value cryptDecryptBase64(Session& /*session*/, Arguments in) {
    const auto bytes = base64Bytes(in[0].asText());
    return bytes ? decryptedValue(*bytes, in[1]) : Value::invalid();
}

Value generateSignature(Session& /*session*/, Arguments in) {
    const DataBytes data(in[0]);
    const DataBytes key(in[2]);
    return data.exist() && key.exist()
               ? fileOrFailure(signatureOf(data.bytes(), in[1].asText(), key.bytes(), toUtf8(in[3].asText())))
               : Value::invalid();
}

Value verifySignature(Session& /*session*/, Arguments in) {
    const DataBytes data(in[0]);
    const DataBytes key(in[2]);
    const DataBytes signature(in[3]);
    if (!data.exist() || !key.exist() || !signature.exist()) {
        return Value::invalid();
    }
    const auto fits = signatureFits(data.bytes(), in[1].asText(), key.bytes(), signature.bytes());
    return fits ? integerValue(*fits ? 1 : 0) : Value::invalid();
}

constexpr Builtin kFunctions[] = {
    {u"CryptAuthCode ( data ; algorithm ; key )", cryptAuthCode,
     "Returns the authentication code of data with a key."},
    {u"CryptDecrypt ( container ; key )", cryptDecrypt, "Returns what CryptEncrypt encrypted."},
    {u"CryptDecryptBase64 ( text ; key )", cryptDecryptBase64, "Returns what CryptEncryptBase64 encrypted."},
    {u"CryptDigest ( data ; algorithm )", cryptDigest, "Returns the digest of data."},
    {u"CryptEncrypt ( data ; key )", cryptEncrypt, "Encrypts data with a key."},
    {u"CryptEncryptBase64 ( data ; key )", cryptEncryptBase64,
     "Encrypts data with a key and writes them in Base64."},
    {u"CryptGenerateSignature ( data ; algorithm ; privateRSAKey ; keyPassword )", generateSignature,
     "Signs data with a private key."},
    {u"CryptVerifySignature ( data ; algorithm ; publicRSAKey ; signature )", verifySignature,
     "Tells whether a signature fits data and a public key."},
};

} // namespace

std::span<const Builtin> cryptFunctions() {
    return kFunctions;
}

} // namespace host

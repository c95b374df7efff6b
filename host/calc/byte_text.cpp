#include "host/calc/byte_text.h"

#include <algorithm>
#include <nettle/base16.h>
#include <nettle/base64.h>

namespace host {

namespace {

constexpr std::u16string_view kLineEnd = u"\r\n";

bool isAscii(std::u16string_view text) {
    return std::all_of(text.begin(), text.end(), [](char16_t c) { return c < 0x80; });
}

} // namespace

// Works piece by piece, so that besides the result there is no second copy: files in containers may be large.
std::u16string base64Text(std::span<const unsigned char> bytes, size_t columns) {
    constexpr size_t kPiece = 48; // bytes of a piece of a single line
    const size_t piece = columns == 0 ? kPiece : columns / 4 * 3;
    const size_t length = BASE64_ENCODE_RAW_LENGTH(bytes.size());
    std::u16string result;
    result.reserve(length + (columns == 0 ? 0 : (length / columns + 1) * kLineEnd.size()));
    std::string line;
    while (!bytes.empty()) {
        const size_t taken = std::min(piece, bytes.size());
        line.resize(BASE64_ENCODE_RAW_LENGTH(taken));
        base64_encode_raw(line.data(), taken, bytes.data());
        result.append(line.begin(), line.end());
        result += columns == 0 ? u"" : kLineEnd;
        bytes = bytes.subspan(taken);
    }
    return result;
}

std::optional<Bytes> base64Bytes(std::u16string_view text) {
    constexpr size_t kPiece = 4096;
    base64_decode_ctx context;
    base64_decode_init(&context);
    Bytes result(BASE64_DECODE_LENGTH(text.size()));
    size_t size = 0;
    std::string piece;
    while (!text.empty()) {
        const std::u16string_view units = text.substr(0, kPiece);
        if (!isAscii(units)) {
            return std::nullopt;
        }
        piece.assign(units.begin(), units.end());
        size_t written = 0;
        if (base64_decode_update(&context, &written, result.data() + size, piece.size(), piece.data()) == 0) {
            return std::nullopt;
        }
        size += written;
        text.remove_prefix(units.size());
    }
    if (base64_decode_final(&context) == 0) {
        return std::nullopt;
    }
    result.resize(size);
    return result;
}

std::u16string hexadecimal(ByteView bytes) {
    constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
    std::u16string text;
    text.reserve(bytes.size() * 2);
    for (const unsigned char byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
    }
    return text;
}

std::optional<Bytes> hexadecimalBytes(std::u16string_view text) {
    if (!isAscii(text)) {
        return std::nullopt;
    }
    const std::string digits(text.begin(), text.end());
    base16_decode_ctx context;
    base16_decode_init(&context);
    Bytes bytes(BASE16_DECODE_LENGTH(digits.size()));
    size_t size = bytes.size();
    if (base16_decode_update(&context, &size, bytes.data(), digits.size(), digits.data()) == 0 ||
        base16_decode_final(&context) == 0) {
        return std::nullopt;
    }
    bytes.resize(size);
    return bytes;
}

} // namespace host

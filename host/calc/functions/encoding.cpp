// Data as text: Base64, hexadecimal digits, and text in other encodings.
#include "host/calc/byte_text.h"
#include "host/calc/functions/data.h"
#include "host/calc/functions/groups.h"
#include "host/calc/text_encoding.h"
#include "host/values/container_file.h"
#include "host/values/text.h"

#include <algorithm>

namespace host {

namespace {

// Returns the checksum that RFC 4880 appends to the lines.
std::u16string checksum(std::span<const unsigned char> bytes) {
    constexpr uint32_t kStart = 0xB704CE;
    constexpr uint32_t kPolynomial = 0x1864CFB;
    uint32_t sum = kStart;
    for (const unsigned char byte : bytes) {
        sum ^= static_cast<uint32_t>(byte) << 16;
        for (int bit = 0; bit < 8; ++bit) {
            sum <<= 1;
            sum ^= (sum & 0x1000000) != 0 ? kPolynomial : 0;
        }
    }
    const unsigned char three[] = {static_cast<unsigned char>(sum >> 16),
                                   static_cast<unsigned char>(sum >> 8), static_cast<unsigned char>(sum)};
    return u"=" + base64Text(three, 0) + u"\r\n";
}

struct Base64Form {
    int64_t rfc;
    size_t columns;
    bool hasChecksum;
};
constexpr Base64Form kForms[] = {
    {4648, 0, false}, {1421, 64, false}, {2045, 76, false}, {3548, 0, false}, {4880, 76, true}};

Value encodedValue(const Value& source, const Base64Form& form) {
    const DataBytes data(source);
    if (!data.exist()) {
        return source.isValid() ? Value() : source;
    }
    std::u16string text = base64Text(data.bytes(), form.columns);
    if (form.hasChecksum) {
        text += checksum(data.bytes());
    }
    return Value::text(std::move(text));
}

Value base64Encode(Session& /*session*/, Arguments in) {
    return encodedValue(in[0], {0, 76, false});
}

// Encodes by the RFC with the given number; by the newest for an unknown number.
Value base64EncodeRfc(Session& /*session*/, Arguments in) {
    const int64_t rfc = integer(in[0]);
    const auto* form = std::find_if(std::begin(kForms), std::end(kForms),
                                    [rfc](const Base64Form& row) { return row.rfc == rfc; });
    return encodedValue(in[1], form == std::end(kForms) ? kForms[0] : *form);
}

std::u16string nameArgument(Arguments in) {
    return in.size() > 1 ? in[1].asText() : std::u16string();
}

Value base64Decode(Session& /*session*/, Arguments in) {
    auto bytes = base64Bytes(in[0].asText());
    return in[0].isValid() && bytes ? decodedValue(std::move(*bytes), nameArgument(in)) : Value::invalid();
}

// Returns hexadecimal digits in capitals.
Value hexEncode(Session& /*session*/, Arguments in) {
    const DataBytes data(in[0]);
    if (!data.exist()) {
        return in[0].isValid() ? Value() : in[0];
    }
    return Value::text(hexadecimal(data.bytes()));
}

Value hexDecode(Session& /*session*/, Arguments in) {
    auto bytes = hexadecimalBytes(in[0].asText());
    return in[0].isValid() && bytes ? decodedValue(std::move(*bytes), nameArgument(in)) : Value::invalid();
}

// Returns the line end that the third argument of TextEncode names; empty to leave line ends as they are.
std::u16string_view lineEndOf(int64_t number) {
    constexpr std::u16string_view kLineEnds[] = {u"", u"", u"\r", u"\n", u"\r\n"};
    return number >= 1 && number <= 4 ? kLineEnds[number] : u"";
}

std::u16string withLineEnds(std::u16string_view text, std::u16string_view lineEnd) {
    std::u16string result;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != u'\r' && text[i] != u'\n') {
            result += text[i];
            continue;
        }
        i += text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n' ? 1 : 0;
        result += lineEnd;
    }
    return result;
}

Value textEncode(Session& /*session*/, Arguments in) {
    std::u16string text = in[0].asText();
    if (const std::u16string_view lineEnd = lineEndOf(integer(in[2])); !lineEnd.empty()) {
        text = withLineEnds(text, lineEnd);
    }
    auto bytes = encodedText(text, in[1].asText());
    return in[0].isValid() && bytes ? Value::container(fileContainer(u"text.txt", std::move(*bytes)))
                                    : Value::invalid();
}

Value textDecode(Session& /*session*/, Arguments in) {
    const DataBytes data(in[0]);
    const auto text = data.exist() ? decodedText(data.bytes(), in[1].asText()) : std::nullopt;
    return text ? Value::text(withLineEnds(*text, u"\r")) : Value::invalid();
}

constexpr Builtin kFunctions[] = {
    {u"Base64Decode ( text {; fileNameWithExtension } )", base64Decode,
     "Returns the text, or the file, that Base64 stands for."},
    {u"Base64Encode ( data )", base64Encode, "Writes data in Base64, in lines of 76 characters."},
    {u"Base64EncodeRFC ( RFCNumber ; data )", base64EncodeRfc,
     "Writes data in Base64 as a standard wants it."},
    {u"HexDecode ( data {; fileNameWithExtension } )", hexDecode,
     "Returns the text, or the file, that hexadecimal digits stand for."},
    {u"HexEncode ( data )", hexEncode, "Writes data in hexadecimal digits."},
    {u"TextDecode ( container ; encoding )", textDecode, "Reads a file as text of an encoding."},
    {u"TextEncode ( text ; encoding ; lineEndings )", textEncode, "Makes a file of a text in an encoding."},
};

} // namespace

std::span<const Builtin> encodingFunctions() {
    return kFunctions;
}

} // namespace host

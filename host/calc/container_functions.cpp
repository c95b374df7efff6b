// Containers in calculations: Base64 and the attributes of what a container holds.
#include "host/calc/function_groups.h"
#include "host/values/container_file.h"
#include "host/values/text.h"

#include <algorithm>
#include <array>
#include <nettle/base64.h>
#include <nettle/md5.h>
#include <optional>

namespace host {

namespace {

using Arguments = std::span<const Value>;

// The files of containers may be large: work goes by pieces, beside the result there is no second copy.

constexpr std::u16string_view kLineEnd = u"\r\n";

// Lines of [columns] characters, a multiple of 4, with line ends between them; 0 for a single line.
std::u16string encoded(std::span<const unsigned char> bytes, size_t columns) {
    constexpr size_t kPiece = 48; // bytes of a piece of a single line
    const size_t piece = columns == 0 ? kPiece : columns / 4 * 3;
    const size_t length = BASE64_ENCODE_RAW_LENGTH(bytes.size());
    std::u16string result;
    result.reserve(length + (columns == 0 ? 0 : length / columns * kLineEnd.size()));
    std::string line;
    while (!bytes.empty()) {
        if (columns != 0 && !result.empty()) {
            result += kLineEnd;
        }
        const size_t taken = std::min(piece, bytes.size());
        line.resize(BASE64_ENCODE_RAW_LENGTH(taken));
        base64_encode_raw(line.data(), taken, bytes.data());
        result.append(line.begin(), line.end());
        bytes = bytes.subspan(taken);
    }
    return result;
}

// The file of a container, the UTF-8 of everything else.
Value encodedValue(const Value& source, size_t columns) {
    if (!source.isValid()) {
        return source;
    }
    if (source.type() == ValueType::container) {
        const Container::Stream* stream = fileStream(source.asContainer());
        return stream == nullptr ? Value() : Value::text(encoded(stream->bytes(), columns));
    }
    const std::string text = toUtf8(source.asText());
    return Value::text(encoded({reinterpret_cast<const unsigned char*>(text.data()), text.size()}, columns));
}

// Nothing for a text that is no Base64. White space does not count.
std::optional<Bytes> decoded(std::u16string_view text) {
    constexpr size_t kPiece = 4096;
    base64_decode_ctx context;
    base64_decode_init(&context);
    Bytes result(BASE64_DECODE_LENGTH(text.size()));
    size_t size = 0;
    std::string piece;
    while (!text.empty()) {
        const std::u16string_view units = text.substr(0, kPiece);
        if (std::any_of(units.begin(), units.end(), [](char16_t c) { return c > 0x7F; })) {
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

Value base64Encode(Session& /*session*/, Arguments in) {
    constexpr size_t kMailColumns = 76;
    return encodedValue(in[0], kMailColumns);
}

Value base64EncodeRfc(Session& /*session*/, Arguments in) {
    struct Form {
        int64_t rfc;
        size_t columns;
    };
    constexpr Form kForms[] = {{1421, 64}, {2045, 76}, {3548, 0}, {4648, 0}};
    const int64_t rfc = integer(in[0]);
    const auto* form =
        std::find_if(std::begin(kForms), std::end(kForms), [rfc](const Form& row) { return row.rfc == rfc; });
    return form == std::end(kForms) ? Value::invalid() : encodedValue(in[1], form->columns);
}

// With a file name a container, without one the text that the bytes spell in UTF-8.
Value base64Decode(Session& /*session*/, Arguments in) {
    auto bytes = decoded(in[0].asText());
    if (!in[0].isValid() || !bytes) {
        return Value::invalid();
    }
    const std::u16string name = in.size() > 1 ? in[1].asText() : std::u16string();
    if (!name.empty()) {
        return Value::container(pictureContainer(name, std::move(*bytes)));
    }
    return Value::text(fromUtf8({reinterpret_cast<const char*>(bytes->data()), bytes->size()}));
}

Value integerValue(size_t number) {
    return host::integerValue(static_cast<int64_t>(number));
}

// The digest of the container's file in capital hexadecimal digits.
Value md5(const Container& container) {
    const Container::Stream* stream = fileStream(container);
    if (stream == nullptr) {
        return {};
    }
    md5_ctx context;
    md5_init(&context);
    md5_update(&context, stream->bytes().size(), stream->bytes().data());
    std::array<uint8_t, MD5_DIGEST_SIZE> digest{};
    md5_digest(&context, digest.size(), digest.data());
    std::u16string text;
    for (const uint8_t byte : digest) {
        constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
    }
    return Value::text(text);
}

struct Attribute {
    std::u16string_view name;
    Value (*read)(const Container&);
};

constexpr Attribute kAttributes[] = {
    {u"filename", [](const Container& in) { return Value::text(in.fileNames().value_or(u"")); }},
    {u"storageType", [](const Container& /*in*/) { return Value::text(u"Embedded"); }},
    {u"MD5", md5},
    {u"fileSize",
     [](const Container& in) {
         const Container::Stream* stream = fileStream(in);
         return stream == nullptr ? Value() : integerValue(stream->bytes().size());
     }},
    {u"internalSize", [](const Container& in) { return integerValue(in.totalSize()); }},
    {u"externalSize", [](const Container& /*in*/) { return integerValue(size_t{0}); }},
    {u"width",
     [](const Container& in) {
         const auto sides = pictureSides(in);
         return sides ? host::integerValue(sides->first) : Value();
     }},
    {u"height",
     [](const Container& in) {
         const auto sides = pictureSides(in);
         return sides ? host::integerValue(sides->second) : Value();
     }},
};

// Nothing for what is no container or an empty one, "?" for an attribute that there is not.
Value getContainerAttribute(Session& /*session*/, Arguments in) {
    const std::u16string wanted = foldCase(in[1].asText());
    const auto* attribute = std::find_if(std::begin(kAttributes), std::end(kAttributes),
                                         [&](const Attribute& row) { return foldCase(row.name) == wanted; });
    if (attribute == std::end(kAttributes)) {
        return Value::invalid();
    }
    const Container& container = in[0].asContainer();
    return container.isEmpty() ? Value() : attribute->read(container);
}

constexpr Builtin kFunctions[] = {
    {u"Base64Decode ( text {; fileNameWithExtension } )", base64Decode},
    {u"Base64Encode ( data )", base64Encode},
    {u"Base64EncodeRFC ( RFCNumber ; data )", base64EncodeRfc},
    {u"GetContainerAttribute ( container ; attributeName )", getContainerAttribute},
};

} // namespace

std::span<const Builtin> containerFunctions() {
    return kFunctions;
}

} // namespace host

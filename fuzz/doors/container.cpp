// A container value: its streams, and what the functions for containers make of them. The input is a name, then
// streams: a type, a length in two bytes, the bytes.

#include "fuzz/support/calculator.h"
#include "fuzz/support/claim.h"
#include "fuzz/support/input.h"
#include "host/calc/parser.h"
#include "host/values/container_file.h"
#include "host/values/picture.h"
#include "host/values/text.h"

#include <algorithm>
#include <cstdint>
#include <memory>

namespace {

using namespace host;

constexpr const char16_t* kCalculations[] = {
    u"GetContainerAttribute ( $file ; \"all\" )",
    u"GetContainerAttribute ( $file ; $name )",
    u"Base64Decode ( Base64Encode ( $file ) ; $name )",
    u"HexDecode ( HexEncode ( $file ) ; $name )",
    u"Base64EncodeRFC ( 2045 ; $file )",
    u"CryptDigest ( $file ; \"SHA256\" )",
    u"TextDecode ( $file ; \"utf-8\" )",
    u"TextDecode ( $file ; \"utf-16\" )",
    u"Length ( $file ) & GetAsText ( $file )",
    u"GetHeight ( $file ) & GetWidth ( $file )",
    u"VerifyContainer ( $file )",
    u"GetAsNumber ( $file ) + 1",
    u"$file = $file and $file < $name",
};

Container containerOf(fuzz::Input& input) {
    Container container;
    while (!input.ended()) {
        const uint32_t code = input.number<uint32_t>();
        StreamType type;
        type.setCode(code);
        fuzz::claim(type.code() == code, "the type of a stream is what was set");
        const std::string_view bytes = input.bytes(input.number<uint16_t>());
        container.set(type, Bytes(bytes.begin(), bytes.end()));
        fuzz::claim(container.find(type).has_value(), "a stream that was set is found");
    }
    return container;
}

void lookAt(const Container& container) {
    size_t total = 0;
    for (const Container::Stream& stream : container) {
        total += stream.bytes().size();
        if (const auto header = readPictureHeader(stream.bytes())) {
            fuzz::claim(header->width > 0 && header->height > 0 && isPictureType(header->type),
                        "a picture has sides and a type");
        }
    }
    fuzz::claim(total == container.totalSize(), "a container is as large as its streams together");
    (void)container.fileNames();
    (void)container.pictureSize();
    (void)fileStream(container);
    (void)pictureSides(container);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    const std::u16string name = fromUtf8(input.until('\n'));
    Container container = containerOf(input);
    lookAt(container);
    if (const Container::Stream* file = fileStream(container)) {
        lookAt(pictureContainer(name, file->bytes()));
        lookAt(fileContainer(name, file->bytes()));
    }
    Session session;
    session.setVariable(u"$name", Value::text(name));
    session.setVariable(u"$file", Value::container(container));
    for (const char16_t* text : kCalculations) {
        fuzz::evaluate(session,
                       parseCalculation(std::make_shared<const Source>("", text), session.functions()));
    }
    return 0;
}

#include "tests/plugin/image_support.h"

#include <algorithm>

void add(fmx::BinaryData& container, const Stream& stream) {
    const OwnedQuadChar type(stream.code[0], stream.code[1], stream.code[2], stream.code[3]);
    std::string bytes = stream.bytes;
    EXPECT_EQ(container.Add(*type, static_cast<fmx::uint32>(bytes.size()), bytes.data()), 0);
}

OwnedBinaryData containerOf(std::initializer_list<Stream> streams) {
    OwnedBinaryData container;
    container->AddSIZEData(30, 20);
    for (const Stream& stream : streams) {
        add(*container, stream);
    }
    return container;
}

std::vector<Stream> streamsOf(const fmx::BinaryData& container) {
    std::vector<Stream> streams;
    for (fmx::int32 i = 0; i < container.GetCount(); ++i) {
        OwnedQuadChar type;
        container.GetType(i, *type);
        Stream stream;
        for (fmx::uint32 c = 0; c < 4; ++c) {
            stream.code.push_back((*type)[c]);
        }
        stream.bytes.resize(container.GetSize(i));
        EXPECT_EQ(container.GetData(i, 0, static_cast<fmx::uint32>(stream.bytes.size()), stream.bytes.data()),
                  0);
        streams.push_back(std::move(stream));
    }
    return streams;
}

std::string setPicture(const fmx::BinaryData& container) {
    const OwnedExprEnv environment;
    OwnedData argument;
    argument->SetBinaryData(container, true);
    OwnedDataVect arguments;
    arguments->PushBack(*argument);
    const OwnedData result;
    EXPECT_EQ(Do_KORU_SetImage(40, *environment, *arguments, *result), 0);
    return utf8(stringFromText(result->GetAsText()));
}

OwnedData getPicture() {
    const OwnedExprEnv environment;
    const OwnedDataVect arguments;
    OwnedData result;
    EXPECT_EQ(Do_KORU_GetImage(39, *environment, *arguments, *result), 0);
    return result;
}

void ImageTest::SetUp() {
    PluginTest::SetUp();
    person_ = addPerson(@"Anna", @"Smith");
    EXPECT_EQ(call(Do_KORU_Open, {utf8([person_ uniqueId])}), "0");
}

std::string ImageTest::start(std::size_t length) const {
    NSData* data = [person_ imageData];
    return {static_cast<const char*>([data bytes]), std::min<std::size_t>([data length], length)};
}

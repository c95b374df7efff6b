#import "plugin/images/person_image.h"

#import "plugin/records/plugin_state.h"
#include "tests/plugin/pictures.h"
#include "tests/plugin/replaced_method.h"
#include "tests/plugin/support.h"
#import <AppKit/AppKit.h>
#include <algorithm>

namespace {

// The same picture in another format.
std::string picture(int width, int height, NSBitmapImageFileType format) {
    NSBitmapImageRep* bitmap = [NSBitmapImageRep imageRepWithData:dataOf(bmp(width, height))];
    NSData* data = [bitmap representationUsingType:format properties:nil];
    EXPECT_NE(data, nil);
    return {static_cast<const char*>([data bytes]), [data length]};
}

struct Stream {
    std::string code;
    std::string bytes;
};

void add(fmx::BinaryData& container, const Stream& stream) {
    const fmx::QuadCharAutoPtr type(stream.code[0], stream.code[1], stream.code[2], stream.code[3]);
    std::string bytes = stream.bytes;
    EXPECT_EQ(container.Add(*type, static_cast<fmx::uint32>(bytes.size()), bytes.data()), 0);
}

// The streams behind a first one that is no picture, as the host makes its containers.
fmx::BinaryDataAutoPtr containerOf(std::initializer_list<Stream> streams) {
    fmx::BinaryDataAutoPtr container;
    container->AddSIZEData(30, 20);
    for (const Stream& stream : streams) {
        add(*container, stream);
    }
    return container;
}

std::string set(const fmx::BinaryData& container) {
    const fmx::ExprEnvAutoPtr environment;
    fmx::DataAutoPtr argument;
    argument->SetBinaryData(container, true);
    fmx::DataVectAutoPtr arguments;
    arguments->PushBack(*argument);
    const fmx::DataAutoPtr result;
    EXPECT_EQ(Do_KORU_SetImage(40, *environment, *arguments, *result), 0);
    return utf8(stringFromText(result->GetAsText()));
}

// The result of reading the picture.
fmx::DataAutoPtr get() {
    const fmx::ExprEnvAutoPtr environment;
    const fmx::DataVectAutoPtr arguments;
    fmx::DataAutoPtr result;
    EXPECT_EQ(Do_KORU_GetImage(39, *environment, *arguments, *result), 0);
    return result;
}

std::vector<Stream> streamsOf(const fmx::BinaryData& container) {
    std::vector<Stream> streams;
    for (fmx::int32 i = 0; i < container.GetCount(); ++i) {
        fmx::QuadCharAutoPtr type;
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

class ImageTest : public PluginTest {
  protected:
    void SetUp() override {
        PluginTest::SetUp();
        person_ = addPerson(@"Anna", @"Smith");
        EXPECT_EQ(call(Do_KORU_Open, {utf8([person_ uniqueId])}), "0");
    }

    // How the person's picture begins; empty without one.
    std::string start(std::size_t length) const {
        NSData* data = [person_ imageData];
        return {static_cast<const char*>([data bytes]), std::min<std::size_t>([data length], length)};
    }

    bool hasPicture() const { return [person_ imageData] != nil; }

    ABPerson* person_ = nil;
};

constexpr const char* kPng = "\x89PNG";

TEST_F(ImageTest, EachFormatIsStoredAsItself) {
    EXPECT_EQ(set(*containerOf({{"PNGf", picture(30, 20, NSBitmapImageFileTypePNG)}})), "0");
    EXPECT_EQ(start(4), kPng);
    EXPECT_EQ(set(*containerOf({{"JPEG", picture(30, 20, NSBitmapImageFileTypeJPEG)}})), "0");
    EXPECT_EQ(start(2), "\xFF\xD8");
    EXPECT_EQ(set(*containerOf({{"GIFf", picture(30, 20, NSBitmapImageFileTypeGIF)}})), "0");
    EXPECT_EQ(start(3), "GIF");
    EXPECT_EQ(set(*containerOf({{"BMPf", bmp(30, 20)}})), "0");
    EXPECT_EQ(start(2), "BM");
}

TEST_F(ImageTest, TheFirstKnownCodeOfTheListFixesTheFormat) {
    const std::string jpeg = picture(30, 20, NSBitmapImageFileTypeJPEG);
    const std::string gif = picture(30, 20, NSBitmapImageFileTypeGIF);
    const std::string png = picture(30, 20, NSBitmapImageFileTypePNG);
    EXPECT_EQ(set(*containerOf({{"JPEG", jpeg}, {"PNGf", png}})), "0");
    EXPECT_EQ(start(4), kPng);
    EXPECT_EQ(set(*containerOf({{"GIFf", gif}, {"JPEG", jpeg}, {"BMPf", bmp(30, 20)}})), "0");
    EXPECT_EQ(start(2), "BM");
    EXPECT_EQ(set(*containerOf({{"GIFf", gif}, {"JPEG", jpeg}})), "0");
    EXPECT_EQ(start(2), "\xFF\xD8");
}

TEST_F(ImageTest, TheCodeDecidesNotTheBytes) {
    EXPECT_EQ(set(*containerOf({{"PNGf", picture(30, 20, NSBitmapImageFileTypeJPEG)}})), "0");
    EXPECT_EQ(start(4), kPng);
}

// Meant: the first stream of a container is never taken.
TEST_F(ImageTest, TheFirstStreamIsNotTaken) {
    fmx::BinaryDataAutoPtr container;
    add(*container, {"PNGf", picture(30, 20, NSBitmapImageFileTypePNG)});
    EXPECT_EQ(set(*container), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8027");
    EXPECT_EQ(lastErrorText(), "Unsupported image type ");
    EXPECT_FALSE(hasPicture());
    add(*container, {"JPEG", picture(30, 20, NSBitmapImageFileTypeJPEG)});
    EXPECT_EQ(set(*container), "0");
    EXPECT_EQ(start(2), "\xFF\xD8");
}

TEST_F(ImageTest, AContainerOfOtherStreamsChangesNothing) {
    EXPECT_EQ(set(*containerOf({{"BMPf", bmp(30, 20)}})), "0");
    EXPECT_EQ(set(*containerOf({{"TIFF", "x"}, {"FILE", "y"}, {"pngf", "z"}})), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8027");
    EXPECT_EQ(start(2), "BM");
}

TEST_F(ImageTest, AnEmptyContainerTakesThePictureAway) {
    EXPECT_EQ(set(*containerOf({{"BMPf", bmp(30, 20)}})), "0");
    EXPECT_EQ(set(*fmx::BinaryDataAutoPtr()), "0");
    EXPECT_FALSE(hasPicture());
    EXPECT_EQ(set(*fmx::BinaryDataAutoPtr()), "0");
}

// Meant: the work goes on without a bitmap, and takes the picture away.
TEST_F(ImageTest, WhatIsNoPictureTakesThePictureAwayAndFails) {
    for (const std::string& bytes : {std::string("no picture"), std::string()}) {
        EXPECT_EQ(set(*containerOf({{"BMPf", bmp(30, 20)}})), "0");
        EXPECT_EQ(set(*containerOf({{"PNGf", bytes}})), "!!ERROR!!");
        EXPECT_EQ(lastErrorNumber(), "-8025");
        EXPECT_EQ(lastErrorText(), "Unable to obtain bitmap of image ");
        EXPECT_FALSE(hasPicture());
    }
}

TEST_F(ImageTest, WithoutAPersonSettingIsRefused) {
    state.g_person.reset();
    EXPECT_EQ(set(*containerOf({{"BMPf", bmp(30, 20)}})), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8026");
    EXPECT_EQ(set(*fmx::BinaryDataAutoPtr()), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Unable to set image data ");
    // The refusal hides that there was no bitmap either.
    EXPECT_EQ(set(*containerOf({{"PNGf", "no picture"}})), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8026");
}

TEST_F(ImageTest, TheRecordTypeDoesNotMatter) {
    state.g_currentRecordType = kGroupType;
    EXPECT_EQ(set(*containerOf({{"BMPf", bmp(30, 20)}})), "0");
    EXPECT_TRUE(hasPicture());
    EXPECT_EQ(get()->GetNativeType(), fmx::Data::kDTBinary);
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
}

NSSize shownSize;
void keepSize(id /*self*/, SEL /*selector*/, NSSize size) {
    shownSize = size;
}

TEST_F(ImageTest, TheSizeOfTheContainerIsTheImagesSize) {
    const ReplacedMethod replaced([NSImage class], @selector(setSize:), keepSize);
    shownSize = NSMakeSize(-1, -1);
    EXPECT_EQ(set(*containerOf({{"BMPf", bmp(3, 2)}})), "0");
    EXPECT_EQ(shownSize.width, 30);
    EXPECT_EQ(shownSize.height, 20);
    fmx::BinaryDataAutoPtr unsized;
    add(*unsized, {"FILE", "x"});
    add(*unsized, {"BMPf", bmp(3, 2)});
    EXPECT_EQ(set(*unsized), "0");
    EXPECT_EQ(shownSize.width, 0);
    EXPECT_EQ(shownSize.height, 0);
}

// Meant: the width twice, and BMP in all four streams.
TEST_F(ImageTest, APictureIsAnsweredAsFourStreamsOfBmp) {
    EXPECT_EQ(set(*containerOf({{"PNGf", picture(300, 200, NSBitmapImageFileTypePNG)}})), "0");
    const fmx::DataAutoPtr result = get();
    ASSERT_EQ(result->GetNativeType(), fmx::Data::kDTBinary);
    const fmx::BinaryData& container = result->GetBinaryData();
    short width = 0;
    short height = 0;
    EXPECT_EQ(container.GetSIZEData(width, height), 0);
    EXPECT_EQ(width, 300);
    EXPECT_EQ(height, 300);
    const std::vector<Stream> streams = streamsOf(container);
    ASSERT_EQ(streams.size(), 5U);
    const char* const codes[] = {"SIZE", "GIFf", "BMPf", "JPEG", "PNGf"};
    for (std::size_t i = 0; i < streams.size(); ++i) {
        EXPECT_EQ(streams[i].code, codes[i]);
        if (i > 0) {
            EXPECT_EQ(streams[i].bytes.substr(0, 2), "BM");
            EXPECT_EQ(streams[i].bytes, streams[1].bytes);
        }
    }
    NSBitmapImageRep* back = [NSBitmapImageRep imageRepWithData:dataOf(streams[1].bytes)];
    EXPECT_EQ([back pixelsWide], 300);
    EXPECT_EQ([back pixelsHigh], 200);
}

TEST_F(ImageTest, NoPictureIsTheEmptyText) {
    EXPECT_EQ(call(Do_KORU_GetImage), "");
    EXPECT_EQ(lastErrorNumber(), "0");
    state.g_person.reset();
    EXPECT_EQ(call(Do_KORU_GetImage), "");
    EXPECT_EQ(lastErrorNumber(), "0");
}

// Meant: the container is answered, and only the last error tells of it.
TEST_F(ImageTest, APictureThatCannotBeReadAnswersAContainerAllTheSame) {
    ASSERT_TRUE([person_ setImageData:dataOf("no picture")]);
    const fmx::DataAutoPtr result = get();
    EXPECT_EQ(lastErrorNumber(), "-8025");
    ASSERT_EQ(result->GetNativeType(), fmx::Data::kDTBinary);
    const fmx::BinaryData& container = result->GetBinaryData();
    short width = -1;
    short height = -1;
    EXPECT_EQ(container.GetSIZEData(width, height), 0);
    EXPECT_EQ(width, 0);
    EXPECT_EQ(height, 0);
    const std::vector<Stream> streams = streamsOf(container);
    ASSERT_EQ(streams.size(), 5U);
    for (std::size_t i = 1; i < streams.size(); ++i) {
        EXPECT_EQ(streams[i].bytes, "");
    }
}

NSInteger hugeWidth(id /*self*/, SEL /*selector*/) {
    return 70000;
}

TEST_F(ImageTest, AWidthBeyondTheRecordIsCutToItsBits) {
    EXPECT_EQ(set(*containerOf({{"BMPf", bmp(3, 2)}})), "0");
    const ReplacedMethod replaced([NSBitmapImageRep class], @selector(pixelsWide), hugeWidth);
    const fmx::DataAutoPtr result = get();
    short width = 0;
    short height = 0;
    EXPECT_EQ(result->GetBinaryData().GetSIZEData(width, height), 0);
    EXPECT_EQ(width, 70000 - 65536);
    EXPECT_EQ(height, width);
}

BOOL raiseOnSet(id /*self*/, SEL /*selector*/, NSData* /*data*/) {
    [NSException raise:NSGenericException format:@"no room for pictures"];
    return NO;
}

TEST_F(ImageTest, AnExceptionIsTheCallsError) {
    const ReplacedMethod replaced([ABPerson class], @selector(setImageData:), raiseOnSet);
    EXPECT_EQ(set(*containerOf({{"BMPf", bmp(3, 2)}})), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Exception caught in function no room for pictures");
}

} // namespace

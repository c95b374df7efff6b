#import "plugin/images/person_image.h"

#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#include "tests/plugin/host_double.h"
#include "tests/plugin/image_support.h"
#include "tests/plugin/pictures.h"
#include "tests/plugin/replaced_method.h"
#import <AppKit/AppKit.h>

namespace {

// Returns a picture in another format.
std::string picture(int width, int height, NSBitmapImageFileType format) {
    NSBitmapImageRep* bitmap = [NSBitmapImageRep imageRepWithData:dataOf(bmp(width, height))];
    NSData* data = [bitmap representationUsingType:format properties:nil];
    EXPECT_NE(data, nil);
    return {static_cast<const char*>([data bytes]), [data length]};
}

constexpr const char* kPng = "\x89PNG";

TEST_F(ImageTest, EachFormatIsStoredAsItself) {
    EXPECT_EQ(setPicture(*containerOf({{"PNGf", picture(30, 20, NSBitmapImageFileTypePNG)}})), "0");
    EXPECT_EQ(start(4), kPng);
    EXPECT_EQ(setPicture(*containerOf({{"JPEG", picture(30, 20, NSBitmapImageFileTypeJPEG)}})), "0");
    EXPECT_EQ(start(2), "\xFF\xD8");
    EXPECT_EQ(setPicture(*containerOf({{"GIFf", picture(30, 20, NSBitmapImageFileTypeGIF)}})), "0");
    EXPECT_EQ(start(3), "GIF");
    EXPECT_EQ(setPicture(*containerOf({{"BMPf", bmp(30, 20)}})), "0");
    EXPECT_EQ(start(2), "BM");
}

TEST_F(ImageTest, TheFirstKnownCodeOfTheListFixesTheFormat) {
    const std::string jpeg = picture(30, 20, NSBitmapImageFileTypeJPEG);
    const std::string gif = picture(30, 20, NSBitmapImageFileTypeGIF);
    const std::string png = picture(30, 20, NSBitmapImageFileTypePNG);
    EXPECT_EQ(setPicture(*containerOf({{"JPEG", jpeg}, {"PNGf", png}})), "0");
    EXPECT_EQ(start(4), kPng);
    EXPECT_EQ(setPicture(*containerOf({{"GIFf", gif}, {"JPEG", jpeg}, {"BMPf", bmp(30, 20)}})), "0");
    EXPECT_EQ(start(2), "BM");
    EXPECT_EQ(setPicture(*containerOf({{"GIFf", gif}, {"JPEG", jpeg}})), "0");
    EXPECT_EQ(start(2), "\xFF\xD8");
    EXPECT_EQ(setPicture(*containerOf({{"BMPf", bmp(30, 20)}, {"PNGf", png}})), "0");
    EXPECT_EQ(start(4), kPng);
}

TEST_F(ImageTest, TheCodeDecidesNotTheBytes) {
    EXPECT_EQ(setPicture(*containerOf({{"PNGf", picture(30, 20, NSBitmapImageFileTypeJPEG)}})), "0");
    EXPECT_EQ(start(4), kPng);
}

// Meant: the first stream of a container is never taken.
TEST_F(ImageTest, TheFirstStreamIsNotTaken) {
    OwnedBinaryData container;
    add(*container, {"PNGf", picture(30, 20, NSBitmapImageFileTypePNG)});
    EXPECT_EQ(setPicture(*container), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8027");
    EXPECT_EQ(lastErrorText(), "Unsupported image type ");
    EXPECT_FALSE(hasPicture());
    add(*container, {"JPEG", picture(30, 20, NSBitmapImageFileTypeJPEG)});
    EXPECT_EQ(setPicture(*container), "0");
    EXPECT_EQ(start(2), "\xFF\xD8");
}

TEST_F(ImageTest, AContainerOfOtherStreamsChangesNothing) {
    EXPECT_EQ(setPicture(*containerOf({{"BMPf", bmp(30, 20)}})), "0");
    EXPECT_EQ(setPicture(*containerOf({{"TIFF", "x"}, {"FILE", "y"}, {"pngf", "z"}})), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8027");
    EXPECT_EQ(start(2), "BM");
}

TEST_F(ImageTest, AnEmptyContainerTakesThePictureAway) {
    EXPECT_EQ(setPicture(*containerOf({{"BMPf", bmp(30, 20)}})), "0");
    EXPECT_EQ(setPicture(*OwnedBinaryData()), "0");
    EXPECT_FALSE(hasPicture());
    EXPECT_EQ(setPicture(*OwnedBinaryData()), "0");
}

// On purpose: the function continues without a bitmap, and removes the picture.
TEST_F(ImageTest, WhatIsNoPictureTakesThePictureAwayAndFails) {
    for (const std::string& bytes : {std::string("no picture"), std::string()}) {
        EXPECT_EQ(setPicture(*containerOf({{"BMPf", bmp(30, 20)}})), "0");
        EXPECT_EQ(setPicture(*containerOf({{"PNGf", bytes}})), "!!ERROR!!");
        EXPECT_EQ(lastErrorNumber(), "-8025");
        EXPECT_EQ(lastErrorText(), "Unable to obtain bitmap of image ");
        EXPECT_FALSE(hasPicture());
    }
}

TEST_F(ImageTest, WithoutAPersonSettingIsRefused) {
    state.g_person.reset();
    EXPECT_EQ(setPicture(*containerOf({{"BMPf", bmp(30, 20)}})), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8026");
    EXPECT_EQ(setPicture(*OwnedBinaryData()), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Unable to set image data ");
    // The refusal hides that there was no bitmap either.
    EXPECT_EQ(setPicture(*containerOf({{"PNGf", "no picture"}})), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8026");
}

TEST_F(ImageTest, TheRecordTypeDoesNotMatter) {
    state.g_currentRecordType = kGroupType;
    EXPECT_EQ(setPicture(*containerOf({{"BMPf", bmp(30, 20)}})), "0");
    EXPECT_TRUE(hasPicture());
    EXPECT_EQ(getPicture()->GetNativeType(), fmx::Data::kDTBinary);
    EXPECT_EQ(state.g_currentRecordType, kGroupType);
}

NSSize shownSize;
void keepSize(id /*self*/, SEL /*selector*/, NSSize size) {
    shownSize = size;
}

TEST_F(ImageTest, TheSizeOfTheContainerIsTheImagesSize) {
    const ReplacedMethod replaced([NSImage class], @selector(setSize:), keepSize);
    shownSize = NSMakeSize(-1, -1);
    EXPECT_EQ(setPicture(*containerOf({{"BMPf", bmp(3, 2)}})), "0");
    EXPECT_EQ(shownSize.width, 30);
    EXPECT_EQ(shownSize.height, 20);
    OwnedBinaryData unsized;
    add(*unsized, {"FILE", "x"});
    add(*unsized, {"BMPf", bmp(3, 2)});
    EXPECT_EQ(setPicture(*unsized), "0");
    EXPECT_EQ(shownSize.width, 0);
    EXPECT_EQ(shownSize.height, 0);
}

// Meant: the width twice, and BMP in all four streams.
TEST_F(ImageTest, APictureIsAnsweredAsFourStreamsOfBmp) {
    EXPECT_EQ(setPicture(*containerOf({{"PNGf", picture(300, 200, NSBitmapImageFileTypePNG)}})), "0");
    const OwnedData result = getPicture();
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

// On purpose: the container is returned, and only the last error shows the failure.
TEST_F(ImageTest, APictureThatCannotBeReadAnswersAContainerAllTheSame) {
    ASSERT_TRUE([person_ setImageData:dataOf("no picture")]);
    const OwnedData result = getPicture();
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

// What the bitmap was asked for: its width, its height, and representations.
std::vector<NSInteger> widths;
std::size_t widthQuestions;
int heightQuestions;
struct Representation {
    NSBitmapImageFileType format;
    NSDictionary* properties;
};
std::vector<Representation> representations;

NSInteger nextWidth(id /*self*/, SEL /*selector*/) {
    return widths.at(widthQuestions++);
}

NSInteger countHeight(id /*self*/, SEL /*selector*/) {
    ++heightQuestions;
    return 200;
}

// Encodes nothing.
NSData* noteRepresentation(id /*self*/, SEL /*selector*/, NSBitmapImageFileType format,
                           NSDictionary* properties) {
    representations.push_back({format, properties});
    return nil;
}

TEST_F(ImageTest, TheWidthIsAskedForTwiceAndCutToItsBits) {
    EXPECT_EQ(setPicture(*containerOf({{"BMPf", bmp(3, 2)}})), "0");
    const ReplacedMethod width([NSBitmapImageRep class], @selector(pixelsWide), nextWidth);
    const ReplacedMethod height([NSBitmapImageRep class], @selector(pixelsHigh), countHeight);
    const std::pair<std::vector<NSInteger>, std::pair<int, int>> all[] = {
        {{300, 301}, {300, 301}},
        {{70000, 70000}, {4464, 4464}},
        {{32768, 65535}, {-32768, -1}},
    };
    for (const auto& [asked, answered] : all) {
        widths = asked;
        widthQuestions = 0;
        heightQuestions = 0;
        const OwnedData result = getPicture();
        short first = 0;
        short second = 0;
        EXPECT_EQ(result->GetBinaryData().GetSIZEData(first, second), 0);
        EXPECT_EQ(first, answered.first);
        EXPECT_EQ(second, answered.second);
        EXPECT_EQ(widthQuestions, 2U);
        EXPECT_EQ(heightQuestions, 0) << "the height is nobody's business";
    }
}

// A bitmap that cannot be encoded is as good as none, but no failure: the picture is taken away.
TEST_F(ImageTest, TheBitmapIsEncodedInTheFormatOfTheCode) {
    EXPECT_EQ(setPicture(*containerOf({{"BMPf", bmp(30, 20)}})), "0");
    const ReplacedMethod replaced([NSBitmapImageRep class], @selector(representationUsingType:properties:),
                                  noteRepresentation);
    representations.clear();
    getPicture();
    for (const std::string code : {"PNGf", "BMPf", "JPEG", "GIFf"}) {
        ASSERT_TRUE([person_ setImageData:dataOf(bmp(3, 2))]);
        EXPECT_EQ(setPicture(*containerOf({{code, bmp(30, 20)}})), "0");
        EXPECT_EQ(lastErrorNumber(), "0");
        EXPECT_FALSE(hasPicture());
    }
    ASSERT_EQ(representations.size(), 5U) << "reading encodes once";
    const int formats[] = {1, 4, 1, 3, 2};
    for (std::size_t i = 0; i < representations.size(); ++i) {
        EXPECT_EQ(static_cast<int>(representations[i].format), formats[i]);
        EXPECT_EQ(representations[i].properties, nil);
    }
}

NSArray* shownRepresentations;
NSArray* answerRepresentations(id /*self*/, SEL /*selector*/) {
    return shownRepresentations;
}

TEST_F(ImageTest, TheFirstBitmapOfAnImageCounts) {
    ASSERT_TRUE([person_ setImageData:dataOf(bmp(3, 2))]);
    const ReplacedMethod replaced([NSImage class], @selector(representations), answerRepresentations);
    NSImageRep* other = [[[NSImageRep alloc] init] autorelease];
    NSBitmapImageRep* first = [NSBitmapImageRep imageRepWithData:dataOf(bmp(11, 5))];
    NSBitmapImageRep* second = [NSBitmapImageRep imageRepWithData:dataOf(bmp(22, 5))];
    shownRepresentations = [NSArray arrayWithObjects:other, first, second, nil];
    short width = 0;
    short height = 0;
    EXPECT_EQ(getPicture()->GetBinaryData().GetSIZEData(width, height), 0);
    EXPECT_EQ(width, 11);
    shownRepresentations = [NSArray arrayWithObject:other];
    EXPECT_EQ(getPicture()->GetNativeType(), fmx::Data::kDTBinary);
    EXPECT_EQ(lastErrorNumber(), "-8025");
    EXPECT_EQ(setPicture(*containerOf({{"BMPf", bmp(3, 2)}})), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8025");
    EXPECT_FALSE(hasPicture());
}

NSImage* shownImage;
NSArray* keepImage(id self, SEL /*selector*/) {
    shownImage = [self retain];
    return shownRepresentations;
}

TEST_F(ImageTest, TheImageGoesWithTheCall) {
    ASSERT_TRUE([person_ setImageData:dataOf(bmp(3, 2))]);
    const ReplacedMethod replaced([NSImage class], @selector(representations), keepImage);
    shownRepresentations = [NSArray arrayWithObject:[NSBitmapImageRep imageRepWithData:dataOf(bmp(3, 2))]];
    getPicture();
    EXPECT_EQ([shownImage retainCount], 1U);
    [shownImage release];
    EXPECT_EQ(setPicture(*containerOf({{"BMPf", bmp(3, 2)}})), "0");
    EXPECT_EQ([shownImage retainCount], 1U);
    [shownImage release];
}

TEST_F(ImageTest, NothingIsSaved) {
    ABAddressBook* book = [ABAddressBook sharedAddressBook];
    EXPECT_EQ(setPicture(*containerOf({{"BMPf", bmp(3, 2)}})), "0");
    EXPECT_TRUE([book hasUnsavedChanges]);
    EXPECT_TRUE([book save]);
    getPicture();
    EXPECT_FALSE([book hasUnsavedChanges]);
    EXPECT_EQ(setPicture(*OwnedBinaryData()), "0");
    EXPECT_TRUE([book hasUnsavedChanges]);
}

BOOL refuse(id /*self*/, SEL /*selector*/, NSData* /*data*/) {
    return NO;
}

TEST_F(ImageTest, ARefusalOfThePersonIsTheLastWord) {
    const ReplacedMethod replaced([ABPerson class], @selector(setImageData:), refuse);
    for (const auto& container :
         {containerOf({{"BMPf", bmp(3, 2)}}), containerOf({{"BMPf", "no picture"}}), OwnedBinaryData()}) {
        EXPECT_EQ(setPicture(*container), "!!ERROR!!");
        EXPECT_EQ(lastErrorNumber(), "-8026");
    }
}

TEST_F(ImageTest, AWrongNumberOfArgumentsIsRefused) {
    EXPECT_EQ(setPicture(*containerOf({{"BMPf", bmp(3, 2)}})), "0");
    EXPECT_EQ(call(Do_KORU_SetImage), "!!ERROR!!");
    EXPECT_EQ(errors.g_llasterror, kInvalidParameterCount);
    EXPECT_EQ(call(Do_KORU_SetImage, {"", ""}), "!!ERROR!!");
    EXPECT_EQ(call(Do_KORU_GetImage, {""}), "!!ERROR!!");
    EXPECT_EQ(errors.g_llasterror, kInvalidParameterCount);
    EXPECT_TRUE(hasPicture());
}

// Each call of the host fails once, with either code: the exception passes, nothing of the host's stays
// behind, and the picture is the old or the new one.
TEST_F(ImageTest, AFailureOfTheHostPasses) {
    const std::string old = bmp(3, 2);
    const OwnedBinaryData container =
        containerOf({{"FILE", "x"}, {"GIFf", picture(30, 20, NSBitmapImageFileTypeGIF)}});
    int failures = 0;
    for (int before = 0;; ++before) {
        ASSERT_TRUE([person_ setImageData:dataOf(old)]);
        const OwnedExprEnv environment;
        const OwnedData argument;
        argument->SetBinaryData(*container, true);
        const OwnedDataVect arguments;
        arguments->PushBack(*argument);
        const OwnedData result;
        const int living = host_double::livingObjects();
        host_double::failAfter(before, 1 + before % 2);
        try {
            EXPECT_EQ(Do_KORU_SetImage(40, *environment, *arguments, *result), 0);
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(before % 2, 0);
            ++failures;
        } catch (const std::exception&) {
            EXPECT_EQ(before % 2, 1);
            ++failures;
        }
        const bool failed = host_double::hasFailed();
        host_double::reset();
        EXPECT_EQ(host_double::livingObjects(), living) << before;
        EXPECT_TRUE(start(old.size()) == old || start(3) == "GIF") << before;
        if (!failed) {
            EXPECT_EQ(failures, before);
            EXPECT_GE(failures, 14);
            break;
        }
    }
}

BOOL raiseOnSet(id /*self*/, SEL /*selector*/, NSData* /*data*/) {
    [NSException raise:NSGenericException format:@"no room for pictures"];
    return NO;
}

TEST_F(ImageTest, AnExceptionIsTheCallsError) {
    const ReplacedMethod replaced([ABPerson class], @selector(setImageData:), raiseOnSet);
    EXPECT_EQ(setPicture(*containerOf({{"BMPf", bmp(3, 2)}})), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Exception caught in function no room for pictures");
}

NSData* raiseOnGet(id /*self*/, SEL /*selector*/) {
    [NSException raise:NSGenericException format:@"no pictures to be seen"];
    return nil;
}

TEST_F(ImageTest, AnExceptionInReadingIsTheErrorText) {
    const ReplacedMethod replaced([ABPerson class], @selector(imageData), raiseOnGet);
    EXPECT_EQ(call(Do_KORU_GetImage), "!!ERROR!!");
    EXPECT_EQ(lastErrorText(), "Exception caught in function no pictures to be seen");
}

} // namespace

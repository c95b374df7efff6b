#include "tests/appkit/support.h"

namespace {

struct Case {
    const char* name;
    unsigned samplesPerPixel;
    int tolerance; // JPEG decoders round in ways of their own
};

void PrintTo(const Case& picture, std::ostream* out) {
    *out << picture.name;
}

class DecodingTest : public PictureTest, public testing::WithParamInterface<Case> {};

TEST_P(DecodingTest, ShowsWhatAnotherDecoderShows) {
    const Made made = make(GetParam().name);
    NSImage* image = [[[NSImage alloc] initWithData:dataOf(made.file)] autorelease];
    ASSERT_NE(image, nil);
    EXPECT_TRUE([image isValid]);
    ASSERT_EQ([[image representations] count], 1U);
    NSBitmapImageRep* bitmap = [[image representations] objectAtIndex:0];
    ASSERT_TRUE([bitmap isKindOfClass:[NSBitmapImageRep class]]);
    const Shown shown = shownBy(bitmap);
    EXPECT_EQ([image size].width, made.shown.width);
    EXPECT_EQ([image size].height, made.shown.height);
    EXPECT_EQ([bitmap hasAlpha], made.shown.hasAlpha());
    EXPECT_EQ(shown.samplesPerPixel, GetParam().samplesPerPixel);
    EXPECT_EQ(shown.bits, made.shown.bits);
    EXPECT_LE(difference(shown, made.shown, made.shown.format == "GIF"), GetParam().tolerance);
    if (shown.bits == 16) {
        EXPECT_EQ(shown.samples, made.shown.samples);
    }
}

// Every way in which a camera is held.
INSTANTIATE_TEST_SUITE_P(Orientation, DecodingTest,
                         testing::Values(Case{"jpeg_orientation_1", 3, 2}, Case{"jpeg_orientation_2", 3, 2},
                                         Case{"jpeg_orientation_3", 3, 2}, Case{"jpeg_orientation_4", 3, 2},
                                         Case{"jpeg_orientation_5", 3, 2}, Case{"jpeg_orientation_6", 3, 2},
                                         Case{"jpeg_orientation_7", 3, 2}, Case{"jpeg_orientation_8", 3, 2}),
                         [](const auto& info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Picture, DecodingTest,
    testing::Values(Case{"png", 3, 0}, Case{"png_dot", 3, 0}, Case{"png_alpha", 4, 0}, Case{"png_grey", 1, 0},
                    Case{"png_grey_alpha", 2, 0}, Case{"png_bits", 1, 0}, Case{"png_palette", 3, 0},
                    Case{"png_palette_alpha", 4, 0}, Case{"png_deep", 3, 0}, Case{"png_deep_alpha", 4, 0},
                    Case{"png_deep_grey", 1, 0}, Case{"png_widest", 1, 0}, Case{"png_highest", 1, 0},
                    Case{"png_large", 3, 0}, Case{"jpeg", 3, 2}, Case{"jpeg_dot", 3, 2},
                    Case{"jpeg_grey", 1, 2}, Case{"jpeg_cmyk", 3, 2}, Case{"jpeg_progressive", 3, 2},
                    Case{"jpeg_large", 3, 2}, Case{"gif", 3, 0}, Case{"gif_dot", 1, 0},
                    Case{"gif_animated", 4, 0}, Case{"gif_corner", 4, 0}, Case{"bmp", 3, 0},
                    Case{"bmp_dot", 3, 0}, Case{"bmp_grey", 1, 0}, Case{"bmp_palette", 3, 0},
                    Case{"bmp_bits", 1, 0}, Case{"bmp_alpha", 4, 0}, Case{"bmp_alpha_downward", 4, 0},
                    Case{"bmp_no_alpha", 3, 0}, Case{"bmp_downward", 3, 0}),
    [](const auto& info) { return info.param.name; });

using OrientationTest = PictureTest;

TEST_F(OrientationTest, IsCarriedOutByAnImageOnly) {
    const Made made = make("jpeg_orientation_6"); // 60 by 40, stored lying on its side
    NSData* data = dataOf(made.file);
    NSImage* stored = [[[NSImage alloc] initWithDataIgnoringOrientation:data] autorelease];
    NSBitmapImageRep* bitmap = [NSBitmapImageRep imageRepWithData:data];
    ASSERT_NE(bitmap, nil);
    EXPECT_EQ([bitmap pixelsWide], 40);
    EXPECT_EQ([bitmap pixelsHigh], 60);
    EXPECT_EQ([stored size].width, 40);
    EXPECT_EQ([stored size].height, 60);
    EXPECT_EQ(difference(shownBy(bitmap), shownBy([[stored representations] lastObject])), 0);
}

} // namespace

#include "tests/appkit/support.h"

namespace {

using BitmapTest = PictureTest;

TEST_F(BitmapTest, SaysHowItsSamplesLie) {
    NSBitmapImageRep* bitmap = bitmapOf(make("png_alpha").file);
    EXPECT_EQ([bitmap size].width, 64);
    EXPECT_EQ([bitmap size].height, 48);
    EXPECT_EQ([bitmap bitsPerSample], 8);
    EXPECT_EQ([bitmap bitsPerPixel], 32);
    EXPECT_EQ([bitmap bytesPerRow], 64 * 4);
    EXPECT_EQ([bitmap bytesPerPlane], 64 * 4 * 48);
    EXPECT_EQ([bitmap numberOfPlanes], 1);
    EXPECT_FALSE([bitmap isPlanar]);
    EXPECT_EQ([bitmap bitmapFormat], static_cast<NSBitmapFormat>(NSBitmapFormatAlphaNonpremultiplied));

    NSBitmapImageRep* deep = bitmapOf(make("png_deep").file);
    EXPECT_EQ([deep bitsPerPixel], 48);
    EXPECT_EQ([deep bytesPerRow], 37 * 6);
    EXPECT_EQ([deep bitmapFormat], static_cast<NSBitmapFormat>(NSBitmapFormatSixteenBitLittleEndian));
}

TEST_F(BitmapTest, WritesChangedSamples) {
    NSBitmapImageRep* bitmap = bitmapOf(make("png_dot").file);
    [bitmap bitmapData][1] = 200;
    NSData* file = [bitmap representationUsingType:NSBitmapImageFileTypePNG properties:nil];
    EXPECT_EQ(readBack({file})[0].samples, (std::vector<std::uint16_t>{1, 200, 3}));
}

TEST_F(BitmapTest, SizeInPointsIsNotTheSizeInPixels) {
    NSImage* image = [[[NSImage alloc] initWithData:dataOf(make("png_alpha").file)] autorelease];
    [image setSize:NSMakeSize(-3, 1e9)];
    EXPECT_EQ([image size].width, -3);
    EXPECT_EQ([image size].height, 1e9);
    NSBitmapImageRep* bitmap = [[image representations] lastObject];
    EXPECT_EQ([bitmap pixelsWide], 64);
    EXPECT_EQ([bitmap size].width, 64);
    [bitmap setSize:NSMakeSize(1, 2)];
    EXPECT_EQ([bitmap size].height, 2);
    EXPECT_EQ([bitmap pixelsHigh], 48);
}

TEST_F(BitmapTest, AnEmptyOneIsHarmless) {
    NSImage* image = [[[NSImage alloc] init] autorelease];
    EXPECT_FALSE([image isValid]);
    EXPECT_EQ([[image representations] count], 0U);
    NSBitmapImageRep* bitmap = [[[NSBitmapImageRep alloc] init] autorelease];
    EXPECT_EQ([bitmap pixelsWide], 0);
    EXPECT_EQ([bitmap samplesPerPixel], 0);
    EXPECT_EQ([bitmap bytesPerRow], 0);
    EXPECT_EQ([bitmap bitmapData], nullptr);
    EXPECT_EQ([bitmap representationUsingType:NSBitmapImageFileTypePNG properties:nil], nil);
}

TEST_F(BitmapTest, OutlivesItsImage) {
    NSImage* image = [[NSImage alloc] initWithData:dataOf(make("png_dot").file)];
    NSBitmapImageRep* bitmap = [[[image representations] lastObject] retain];
    [image release];
    EXPECT_EQ([bitmap bitmapData][2], 3);
    EXPECT_EQ([bitmap retainCount], 1U);
    [bitmap release];
}

TEST_F(BitmapTest, OlderNamesMeanTheSame) {
    EXPECT_EQ(NSTIFFFileType, 0);
    EXPECT_EQ(NSBMPFileType, 1);
    EXPECT_EQ(NSGIFFileType, 2);
    EXPECT_EQ(NSJPEGFileType, 3);
    EXPECT_EQ(NSPNGFileType, 4);
    EXPECT_EQ(NSJPEG2000FileType, 5);
}

} // namespace

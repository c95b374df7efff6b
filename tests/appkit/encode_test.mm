#include "support.h"

#include <chrono>
#include <cmath>

namespace {

NSData* written(NSBitmapImageRep* bitmap, NSBitmapImageFileType type, NSDictionary* properties = nil) {
    return [bitmap representationUsingType:type properties:properties];
}

// Every kind of picture that differs in how it is written.
class Encoding : public PictureTest, public testing::WithParamInterface<const char*> {
  protected:
    void SetUp() override {
        PictureTest::SetUp();
        bitmap_ = bitmapOf(make(GetParam()).file);
        ASSERT_NE(bitmap_, nil);
        shown_ = shownBy(bitmap_);
    }

    NSBitmapImageRep* bitmap_ = nil;
    Shown shown_;
};

TEST_P(Encoding, PngKeepsEverySample) {
    NSData* file = written(bitmap_, NSBitmapImageFileTypePNG);
    ASSERT_NE(file, nil);
    const Shown read = readBack(file);
    EXPECT_EQ(read.format, "PNG");
    EXPECT_EQ(read.hasAlpha(), shown_.hasAlpha());
    // Pillow keeps the high byte of 16 bits, where rgba() rounds.
    EXPECT_LE(difference(read, shown_), shown_.bits == 16 ? 1 : 0);
    // The depth stands in the 25th byte.
    EXPECT_EQ(bytesOf(file)[24], shown_.bits == 16 ? 16 : bytesOf(file)[24] & 15);
    const Shown again = shownBy([NSBitmapImageRep imageRepWithData:file]);
    EXPECT_EQ(again.bits, shown_.bits);
    EXPECT_EQ(again.samplesPerPixel, shown_.samplesPerPixel);
    EXPECT_EQ(again.samples, shown_.samples);
}

TEST_P(Encoding, BmpHas24BitsOr32WithAlpha) {
    NSData* file = written(bitmap_, NSBitmapImageFileTypeBMP);
    ASSERT_NE(file, nil);
    const Shown read = readBack(file);
    EXPECT_EQ(read.format, "BMP");
    EXPECT_EQ(read.hasAlpha(), shown_.hasAlpha());
    EXPECT_LE(difference(read, shown_), shown_.bits == 16 ? 1 : 0);
    EXPECT_EQ(bytesOf(file)[28], shown_.hasAlpha() ? 32 : 24);
    EXPECT_EQ(difference(shownBy([NSBitmapImageRep imageRepWithData:file]), read), 0);
}

TEST_P(Encoding, JpegIsCloseAndOnWhite) {
    NSData* file = written(bitmap_, NSBitmapImageFileTypeJPEG);
    ASSERT_NE(file, nil);
    const Shown read = readBack(file);
    EXPECT_EQ(read.format, "JPEG");
    EXPECT_FALSE(read.hasAlpha());
    ASSERT_EQ(read.width, shown_.width);
    ASSERT_EQ(read.height, shown_.height);
    const auto from = shown_.rgba();
    const auto to = read.rgba();
    double sum = 0;
    for (std::size_t i = 0; i < from.size(); ++i)
        if (i % 4 != 3)
            sum += std::abs((from[i] * from[i | 3] + 255 * (255 - from[i | 3])) / 255 - to[i]);
    // Noise of 16 bits is what JPEG is worst at.
    EXPECT_LT(sum / static_cast<double>(from.size()), shown_.bits == 16 ? 40 : 8);
}

TEST_P(Encoding, GifHasAFittingPalette) {
    NSData* file = written(bitmap_, NSBitmapImageFileTypeGIF);
    ASSERT_NE(file, nil);
    const Shown read = readBack(file);
    EXPECT_EQ(read.format, "GIF");
    ASSERT_EQ(read.width, shown_.width);
    ASSERT_EQ(read.height, shown_.height);
    const auto from = shown_.rgba();
    const auto to = read.rgba();
    double sum = 0;
    bool transparent = false;
    for (std::size_t i = 0; i < from.size(); i += 4) {
        transparent |= from[i + 3] < 128;
        ASSERT_EQ(to[i + 3], from[i + 3] < 128 ? 0 : 255) << i / 4;
        for (std::size_t n = i; n < i + 3 && to[i + 3] != 0; ++n)
            sum += std::abs(from[n] - to[n]);
    }
    EXPECT_EQ(read.hasAlpha(), transparent);
    EXPECT_LT(sum / static_cast<double>(from.size()), shown_.bits == 16 ? 40 : 6);
    EXPECT_LE(difference(shownBy([NSBitmapImageRep imageRepWithData:file]), read, true), 0);
}

TEST_P(Encoding, IsNilForWhatIsNotWritten) {
    EXPECT_EQ(written(bitmap_, NSBitmapImageFileTypeTIFF), nil);
    EXPECT_EQ(written(bitmap_, NSBitmapImageFileTypeJPEG2000), nil);
    EXPECT_EQ(written(bitmap_, 99), nil);
    EXPECT_EQ(written(bitmap_, static_cast<NSBitmapImageFileType>(-1)), nil);
}

INSTANTIATE_TEST_SUITE_P(Picture, Encoding,
                         testing::Values("png", "png_dot", "png_alpha", "png_grey", "png_grey_alpha",
                                         "png_bits", "png_palette", "png_palette_alpha", "png_deep",
                                         "png_deep_alpha", "png_deep_grey", "jpeg", "jpeg_dot", "jpeg_grey",
                                         "jpeg_cmyk", "gif", "gif_dot", "gif_animated", "gif_corner",
                                         "bmp_alpha"),
                         [](const auto& info) { return std::string(info.param); });

using EncodingTest = PictureTest;

// 256 colours or fewer stay what they are.
TEST_F(EncodingTest, GifKeepsAPalette) {
    for (const char* name : {"png_palette", "gif_animated", "png_palette_alpha", "png_grey", "png_bits"}) {
        NSBitmapImageRep* bitmap = bitmapOf(make(name).file);
        const Shown read = readBack(written(bitmap, NSBitmapImageFileTypeGIF));
        EXPECT_EQ(difference(read, shownBy(bitmap), true), 0) << name;
    }
}

TEST_F(EncodingTest, JpegQualityIsTheCompressionFactor) {
    NSBitmapImageRep* bitmap = bitmapOf(make("png").file);
    const auto size = [&](id factor) {
        NSDictionary* properties = [NSDictionary dictionaryWithObject:factor forKey:NSImageCompressionFactor];
        return [written(bitmap, NSBitmapImageFileTypeJPEG, properties) length];
    };
    const NSUInteger usual = [written(bitmap, NSBitmapImageFileTypeJPEG) length];
    EXPECT_EQ(size([NSNumber numberWithDouble:0.8]), usual);
    EXPECT_LT(size([NSNumber numberWithDouble:0.2]), usual);
    EXPECT_GT(size([NSNumber numberWithDouble:1.0]), usual);
    EXPECT_EQ(size([NSNumber numberWithDouble:7]), size([NSNumber numberWithDouble:1]));
    EXPECT_GT(size([NSNumber numberWithDouble:-7]), 0U);
    EXPECT_GT(size([NSNumber numberWithDouble:NAN]), 0U);
    EXPECT_EQ(size(@"much"), usual);
}

TEST_F(EncodingTest, TwelveMegapixelsBecomeABmpInTime) {
    const Made made = make("jpeg_large");
    const long before = mostMemory();
    const auto start = std::chrono::steady_clock::now();
    NSBitmapImageRep* bitmap = bitmapOf(made.file);
    NSData* file = written(bitmap, NSBitmapImageFileTypeBMP);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    ASSERT_EQ([file length], 54U + 3 * 4000 * 3000);
    EXPECT_LT(taken.count(), 20);
    // The decoded picture has 34 MiB.
    EXPECT_LT(mostMemory() - before, 6 * 34);
    EXPECT_EQ(difference(readBack(file), shownBy(bitmap)), 0);
}

} // namespace

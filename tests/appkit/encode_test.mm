#include "tests/appkit/support.h"

#include <cmath>
#include <ctime>

namespace {

NSData* written(NSBitmapImageRep* bitmap, NSBitmapImageFileType type, NSDictionary* properties = nil) {
    return [bitmap representationUsingType:type properties:properties];
}

// Every kind of picture that differs in how it is written, as all four types.
class EncodedPictureTest : public PictureTest, public testing::WithParamInterface<const char*> {
  protected:
    // The files, and what another decoder and our own see in them.
    struct Result {
        std::string file;
        Shown theirs;
        Shown ours;
    };

    void SetUp() override {
        PictureTest::SetUp();
        NSBitmapImageRep* bitmap = bitmapOf(make(GetParam()).file);
        ASSERT_NE(bitmap, nil);
        shown_ = shownBy(bitmap);
        std::vector<NSData*> files;
        for (const auto type : {NSBitmapImageFileTypePNG, NSBitmapImageFileTypeBMP, NSBitmapImageFileTypeJPEG,
                                NSBitmapImageFileTypeGIF}) {
            files.push_back(written(bitmap, type));
            ASSERT_NE(files.back(), nil) << type;
        }
        const std::vector<Shown> theirs = readBack(files);
        for (std::size_t i = 0; i < files.size(); ++i) {
            results_.push_back(
                {bytesOf(files[i]), theirs[i], shownBy([NSBitmapImageRep imageRepWithData:files[i]])});
        }
    }

    // PNG keeps every sample.
    void checkPng(const Result& png) const {
        EXPECT_EQ(png.theirs.format, "PNG");
        EXPECT_EQ(png.theirs.hasAlpha(), shown_.hasAlpha());
        // Pillow keeps the high byte of 16 bits, where rgba() rounds.
        EXPECT_LE(difference(png.theirs, shown_), shown_.bits == 16 ? 1 : 0);
        EXPECT_EQ(png.ours.bits, shown_.bits);
        EXPECT_EQ(png.ours.samplesPerPixel, shown_.samplesPerPixel);
        EXPECT_EQ(png.ours.samples, shown_.samples);
    }

    // BMP has 24 bits a pixel, or 32 with alpha.
    void checkBmp(const Result& bmp) const {
        EXPECT_EQ(bmp.theirs.format, "BMP");
        EXPECT_EQ(bmp.theirs.hasAlpha(), shown_.hasAlpha());
        EXPECT_EQ(bmp.file[28], shown_.hasAlpha() ? 32 : 24);
        EXPECT_LE(difference(bmp.theirs, shown_), shown_.bits == 16 ? 1 : 0);
        EXPECT_EQ(difference(bmp.theirs, bmp.ours), 0);
    }

    // JPEG is lossy, and blends transparent pixels with white.
    void checkJpeg(const Result& jpeg) const {
        EXPECT_EQ(jpeg.theirs.format, "JPEG");
        EXPECT_FALSE(jpeg.theirs.hasAlpha());
        EXPECT_LE(difference(jpeg.theirs, jpeg.ours), 2);
        const auto from = shown_.rgba();
        const auto to = jpeg.theirs.rgba();
        ASSERT_EQ(from.size(), to.size());
        double sum = 0;
        for (std::size_t i = 0; i < from.size(); ++i) {
            if (i % 4 != 3) {
                sum += std::abs((from[i] * from[i | 3] + 255 * (255 - from[i | 3])) / 255 - to[i]);
            }
        }
        // Noise, as the pictures of 16 bits are, is what JPEG is worst at.
        EXPECT_LT(sum / static_cast<double>(from.size()), shown_.bits == 16 ? 40 : 8);
    }

    // GIF has colours that fit; a pixel is wholly transparent or not at all.
    void checkGif(const Result& gif) const {
        EXPECT_EQ(gif.theirs.format, "GIF");
        EXPECT_EQ(difference(gif.theirs, gif.ours, true), 0);
        const auto from = shown_.rgba();
        const auto to = gif.theirs.rgba();
        ASSERT_EQ(from.size(), to.size());
        double sum = 0;
        bool transparent = false;
        for (std::size_t i = 0; i < from.size(); i += 4) {
            transparent |= from[i + 3] < 128;
            ASSERT_EQ(to[i + 3], from[i + 3] < 128 ? 0 : 255) << i / 4;
            for (std::size_t n = i; n < i + 3 && to[i + 3] != 0; ++n) {
                sum += std::abs(from[n] - to[n]);
            }
        }
        EXPECT_EQ(gif.theirs.hasAlpha(), transparent);
        EXPECT_LT(sum / static_cast<double>(from.size()), shown_.bits == 16 ? 40 : 6);
    }

    Shown shown_;
    std::vector<Result> results_;
};

TEST_P(EncodedPictureTest, ShowsTheSameToAnotherDecoder) {
    checkPng(results_[0]);
    checkBmp(results_[1]);
    checkJpeg(results_[2]);
    checkGif(results_[3]);
}

INSTANTIATE_TEST_SUITE_P(Picture, EncodedPictureTest,
                         testing::Values("png", "png_dot", "png_alpha", "png_opaque", "png_grey",
                                         "png_grey_alpha", "png_bits", "png_palette", "png_palette_alpha",
                                         "png_deep", "png_deep_alpha", "png_deep_grey", "jpeg", "jpeg_dot",
                                         "jpeg_grey", "jpeg_cmyk", "gif", "gif_dot", "gif_animated",
                                         "gif_corner", "bmp_alpha"),
                         [](const auto& info) { return std::string(info.param); });

using EncodingTest = PictureTest;

TEST_F(EncodingTest, IsNilForWhatIsNotWritten) {
    NSBitmapImageRep* bitmap = bitmapOf(make("png_dot").file);
    EXPECT_EQ(written(bitmap, NSBitmapImageFileTypeTIFF), nil);
    EXPECT_EQ(written(bitmap, NSBitmapImageFileTypeJPEG2000), nil);
    EXPECT_EQ(written(bitmap, 99), nil);
    EXPECT_EQ(written(bitmap, static_cast<NSBitmapImageFileType>(-1)), nil);
}

// 256 colours or fewer stay what they are.
TEST_F(EncodingTest, GifKeepsAPalette) {
    for (const char* name : {"png_palette", "gif_animated", "png_palette_alpha", "png_grey", "png_bits"}) {
        NSBitmapImageRep* bitmap = bitmapOf(make(name).file);
        const auto read = readBack({written(bitmap, NSBitmapImageFileTypeGIF)});
        EXPECT_EQ(difference(read[0], shownBy(bitmap), true), 0) << name;
    }
}

// The time is that of its pixels, not of the square that holds them.
TEST_F(EncodingTest, AColumnBecomesAGifSoon) {
    const unsigned char file[] = "GIF89a\1\0\1\0\x80\0\0\xff\0\0\xff\0\0,\0\0\xfe\x7f\1\0\1\0\0\2\2\x4c\1\0;";
    NSBitmapImageRep* bitmap = [NSBitmapImageRep imageRepWithData:[NSData dataWithBytes:file
                                                                                 length:sizeof file - 1]];
    ASSERT_EQ([bitmap pixelsHigh], 32'767);
    const std::clock_t begin = std::clock();
    NSData* gif = written(bitmap, NSBitmapImageFileTypeGIF);
    EXPECT_LT(std::clock() - begin, CLOCKS_PER_SEC);
    EXPECT_EQ(difference(shownBy([NSBitmapImageRep imageRepWithData:gif]), shownBy(bitmap), true), 0);
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

TEST_F(EncodingTest, TwelveMegapixelsBecomeABmpInModestMemory) {
    const Made made = make("jpeg_large");
    const long before = mostMemory();
    NSBitmapImageRep* bitmap = bitmapOf(made.file);
    NSData* file = written(bitmap, NSBitmapImageFileTypeBMP);
    ASSERT_EQ([file length], 54U + 3 * 4000 * 3000);
#ifndef __SANITIZE_ADDRESS__ // which keeps what was freed for a while
    // The decoded picture has 34 MiB.
    EXPECT_LT(mostMemory() - before, 6 * 34);
#else
    (void)before;
#endif
    EXPECT_EQ(difference(readBack({file})[0], shownBy(bitmap)), 0);
}

} // namespace

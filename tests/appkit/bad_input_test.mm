#include "tests/appkit/support.h"

#include <random>

namespace {

// No bitmap comes of it, whichever way it is read, and nothing is printed.
void expectRefused(NSData* data) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    EXPECT_EQ([[[NSImage alloc] initWithData:data] autorelease], nil);
    EXPECT_EQ([NSBitmapImageRep imageRepWithData:data], nil);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

void expectRefused(const std::string& bytes) {
    expectRefused(dataOf(bytes));
}

using BadInputTest = PictureTest;

TEST_F(BadInputTest, NoPictureAtAll) {
    expectRefused(static_cast<NSData*>(nil));
    expectRefused("");
    expectRefused("A text file with the name picture.png\n");
    expectRefused(std::string(1000, '\0'));
    expectRefused("<svg xmlns=\"http://www.w3.org/2000/svg\"/>");
    expectRefused("viewbox 0 0 100 100\npush graphic-context\n");
    expectRefused("P6 1 1 255\nabc");
    expectRefused(std::string("II*\0\x08\0\0\0", 8));
}

TEST_F(BadInputTest, OnlyASignature) {
    for (const char* signature :
         {"\x89PNG\r\n\x1a\n", "\xff\xd8\xff", "\xff\xd8\xff\xe0", "GIF87a", "GIF89a", "BM"}) {
        expectRefused(signature);
        expectRefused(signature + std::string(1000, '\0'));
        expectRefused(signature + std::string(1000, '\xff'));
        expectRefused(signature + std::string("A text file"));
    }
}

// A signature of one kind before the contents of another.
TEST_F(BadInputTest, ASignatureThatLies) {
    const std::string png = make("png").file;
    expectRefused("GIF89a" + png.substr(6));
    expectRefused("BM" + png.substr(2));
    expectRefused("\xff\xd8\xff" + png.substr(3));
}

TEST_F(BadInputTest, StopsShort) {
    for (const Made& whole : make({"png", "png_alpha", "png_palette", "jpeg", "jpeg_progressive", "jpeg_cmyk",
                                   "gif", "bmp", "bmp_alpha"})) {
        for (const int percent : {1, 10, 50, 90, 99}) {
            SCOPED_TRACE(whole.shown.format + ", " + std::to_string(percent) + "%");
            expectRefused(whole.file.substr(0, whole.file.size() * percent / 100));
        }
    }
}

TEST_F(BadInputTest, ClaimsTooMany) {
    const std::vector<std::string> names = {
        "bomb_png_wide",   "bomb_png_high",     "bomb_png_both",  "bomb_png_most",  "bomb_jpeg",
        "bomb_gif_screen", "bomb_gif_area",     "bomb_gif_place", "bomb_gif_frame", "bomb_bmp",
        "bomb_bmp_most",   "bomb_bmp_negative", "bomb_bmp_masks"};
    const std::vector<Made> bombs = make(names);
    bitmapOf("BM"); // loads the codec
    const long before = mostMemory();
    for (std::size_t i = 0; i < names.size(); ++i) {
        SCOPED_TRACE(names[i]);
        expectRefused(bombs[i].file);
    }
    EXPECT_LT(mostMemory() - before, 16);
}

// What is compressed beside the pixels is not unpacked without bounds.
TEST_F(BadInputTest, CompressedTextInAPicture) {
    const std::string file = make("bomb_png_text").file; // 1 GiB of it
    const long before = mostMemory();
    EXPECT_NE(bitmapOf(file), nil);
    EXPECT_LT(mostMemory() - before, 100);
}

// A chunk may be as long as it says only where the file is.
TEST_F(BadInputTest, AChunkThatClaimsMoreThanThereIs) {
    const std::string whole = make("png").file;
    const std::string text("\x7f\xff\xff\xf0tEXtKey\0Value", 17);
    const std::size_t end = whole.size() - 12; // IEND
    bitmapOf("BM");                            // loads the codec
    const long before = mostMemory();
    expectRefused(whole.substr(0, end) + text);
    expectRefused(whole.substr(0, end) + text + whole.substr(end));
    expectRefused(whole.substr(0, end) + text.substr(0, 7));
    EXPECT_LT(mostMemory() - before, 16);
    EXPECT_NE(bitmapOf(whole + text), nil);
}

TEST_F(BadInputTest, HalfAGigabyteOfJunk) {
    constexpr std::size_t kSize = 500'000'000;
    std::mt19937 chance(1);
    std::string junk(kSize, '\0');
    for (std::size_t i = 0; i < kSize; i += 1000) {
        junk[i] = static_cast<char>(chance());
    }
    NSData* data = [NSData dataWithBytesNoCopy:junk.data() length:junk.size() freeWhenDone:NO];
    bitmapOf("BM"); // loads the codec
    const long before = mostMemory();
    for (const std::string& signature :
         {std::string("junk"), std::string("\x89PNG\r\n\x1a\n"), std::string("\xff\xd8\xff\xe0"),
          std::string("GIF89a"), std::string("BM")}) {
        SCOPED_TRACE(signature);
        junk.replace(0, signature.size(), signature);
        expectRefused(data);
    }
    EXPECT_LT(mostMemory() - before, 100);
}

} // namespace

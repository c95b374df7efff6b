#include "tests/appkit/support.h"

#include <chrono>
#include <cstdlib>
#include <random>

namespace {

// Damages a picture at random for a while. What is still read is whole, and can be written.
class DamageTest : public PictureTest, public testing::WithParamInterface<const char*> {
  protected:
    std::string damaged(std::string file) {
        const auto below = [&](std::size_t end) {
            return std::uniform_int_distribution<std::size_t>(0, end - 1)(chance_);
        };
        for (std::size_t n = below(8) + 1; n > 0 && !file.empty(); --n) {
            // Half of the time where the headers are.
            const std::size_t at =
                below(below(2) == 0 ? std::min<std::size_t>(file.size(), 64) : file.size());
            switch (below(6)) {
            case 0:
                file[at] = static_cast<char>(below(256));
                break;
            case 1:
                file[at] ^= static_cast<char>(1 << below(8));
                break;
            case 2:
                file[at] = below(2) == 0 ? '\xff' : '\0';
                break;
            case 3:
                file.erase(at, below(20) + 1);
                break;
            case 4:
                file.insert(at, file.substr(below(file.size()), below(20) + 1));
                break;
            case 5:
                if (below(8) == 0) {
                    file.resize(at);
                }
                break;
            }
        }
        return file;
    }

    std::mt19937 chance_;
};

TEST_P(DamageTest, NeverDoesHarm) {
    const char* given = std::getenv("FUZZ_SECONDS");
    const std::chrono::duration<double> time(given ? std::atof(given) : 1.5);
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    chance_.seed(seed);
    const std::string whole = make(GetParam()).file;
    int tried = 0;
    int read = 0;
    for (const auto start = std::chrono::steady_clock::now(); std::chrono::steady_clock::now() - start < time;
         ++tried) {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        if (NSBitmapImageRep* bitmap = bitmapOf(damaged(whole))) {
            ++read;
            // What claims to be large takes its time, and shows nothing new.
            if ([bitmap pixelsWide] * [bitmap pixelsHigh] < 1'000'000) {
                const auto type = static_cast<NSBitmapImageFileType>(read % 4 + 1);
                EXPECT_NE([bitmap representationUsingType:type properties:nil], nil) << type;
            }
        }
        [pool release];
    }
    EXPECT_GT(tried, 0);
    RecordProperty("tried", tried);
    RecordProperty("read", read);
}

INSTANTIATE_TEST_SUITE_P(Picture, DamageTest,
                         testing::Values("png_alpha", "png_palette_alpha", "jpeg_grey", "jpeg_cmyk",
                                         "jpeg_orientation_6", "gif_animated", "gif_corner", "bmp_grey",
                                         "bmp_alpha_downward"),
                         [](const auto& info) { return std::string(info.param); });

} // namespace

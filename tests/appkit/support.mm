#include "tests/appkit/support.h"

#include "tests/support/files.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <sys/resource.h>

namespace {

void run(const std::string& arguments) {
    const std::string command = MAKE_PICTURES " " + arguments;
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

Shown shownIn(const std::filesystem::path& path) {
    const std::string file = support::bytesOf(path);
    const std::size_t head = file.find('\n');
    std::istringstream words(file.substr(0, head));
    Shown shown;
    std::string mode;
    words >> shown.format >> shown.width >> shown.height >> mode >> shown.bits;
    shown.samplesPerPixel = static_cast<unsigned>(mode.size());
    const auto* bytes = reinterpret_cast<const unsigned char*>(file.data()) + head + 1;
    const std::size_t samples = std::size_t{1} * shown.samplesPerPixel * shown.width * shown.height;
    EXPECT_EQ(file.size() - head - 1, samples * shown.bits / 8);
    if (shown.bits == 8) {
        shown.samples.assign(bytes, bytes + samples);
    } else {
        for (std::size_t i = 0; i < samples; ++i) {
            shown.samples.push_back(static_cast<std::uint16_t>(bytes[2 * i] << 8 | bytes[2 * i + 1]));
        }
    }
    return shown;
}

} // namespace

std::vector<std::uint8_t> Shown::rgba() const {
    std::vector<std::uint8_t> all;
    all.reserve(4UL * width * height);
    for (std::size_t i = 0; i < samples.size(); i += samplesPerPixel) {
        const auto sample = [&](unsigned n) {
            return static_cast<std::uint8_t>(bits == 16 ? (samples[i + n] + 128) / 257 : samples[i + n]);
        };
        const bool grey = samplesPerPixel < 3;
        all.insert(all.end(), {sample(0), sample(grey ? 0 : 1), sample(grey ? 0 : 2),
                               hasAlpha() ? sample(samplesPerPixel - 1) : std::uint8_t{255}});
    }
    return all;
}

Shown shownBy(NSBitmapImageRep* bitmap) {
    Shown shown;
    shown.width = static_cast<unsigned>([bitmap pixelsWide]);
    shown.height = static_cast<unsigned>([bitmap pixelsHigh]);
    shown.samplesPerPixel = static_cast<unsigned>([bitmap samplesPerPixel]);
    shown.bits = static_cast<unsigned>([bitmap bitsPerSample]);
    shown.samples.resize(shown.samplesPerPixel * shown.width * shown.height);
    const unsigned char* bytes = [bitmap bitmapData];
    if (shown.bits == 16) {
        std::memcpy(shown.samples.data(), bytes, 2 * shown.samples.size());
    } else {
        std::copy(bytes, bytes + shown.samples.size(), shown.samples.begin());
    }
    return shown;
}

int difference(const Shown& one, const Shown& other, bool visible) {
    EXPECT_EQ(one.width, other.width);
    EXPECT_EQ(one.height, other.height);
    if (one.samples == other.samples && one.samplesPerPixel == other.samplesPerPixel) {
        return 0;
    }
    const auto a = one.rgba();
    const auto b = other.rgba();
    EXPECT_EQ(a.size(), b.size());
    if (a.size() != b.size()) {
        return 256;
    }
    int largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!visible || a[i | 3] != 0 || b[i | 3] != 0) {
            largest = std::max(largest, std::abs(a[i] - b[i]));
        }
    }
    return largest;
}

NSData* dataOf(const std::string& bytes) {
    return [NSData dataWithBytes:bytes.data() length:bytes.size()];
}

std::string bytesOf(NSData* data) {
    return {static_cast<const char*>([data bytes]), [data length]};
}

long mostMemory() {
#ifdef __SANITIZE_THREAD__
    return 0; // the sanitizer's own is many times that
#endif
    rusage usage = {};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

std::vector<PictureTest::Made> PictureTest::make(const std::vector<std::string>& names) {
    std::string arguments = "make " + folder_.string();
    for (const std::string& name : names) {
        arguments += " " + name;
    }
    run(arguments);
    std::vector<Made> made;
    for (const std::string& name : names) {
        made.push_back({support::bytesOf(folder_ / name), shownIn(folder_ / (name + ".raw"))});
    }
    return made;
}

PictureTest::Made PictureTest::make(const std::string& name) {
    return make(std::vector{name}).front();
}

std::vector<Shown> PictureTest::readBack(const std::vector<NSData*>& files) {
    std::string arguments = "read";
    std::vector<std::string> paths;
    for (NSData* file : files) {
        paths.push_back(folder_ / ("written" + std::to_string(paths.size())));
        std::ofstream(paths.back(), std::ios::binary) << bytesOf(file);
        arguments += " " + paths.back();
    }
    run(arguments);
    std::vector<Shown> shown;
    for (const std::string& path : paths) {
        shown.push_back(shownIn(path + ".raw"));
    }
    return shown;
}

NSBitmapImageRep* PictureTest::bitmapOf(const std::string& file) {
    NSImage* image = [[[NSImage alloc] initWithData:dataOf(file)] autorelease];
    return [[image representations] lastObject];
}

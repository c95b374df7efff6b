// Containers with false or damaged contents: nothing crashes, the error codes are the usual ones, and memory
// use stays in proportion.

#include "tests/plugin/image_support.h"
#include "tests/plugin/pictures.h"
#import <AppKit/AppKit.h>
#include <chrono>
#include <fstream>
#include <malloc.h>
#include <random>

using namespace std::literals;

namespace {

using HostileImageTest = ImageTest;

constexpr const char* kCodes[] = {"PNGf", "BMPf", "JPEG", "GIFf"};

// How files of the known formats begin, each a little further than what it is known by.
const std::string kStarts[] = {
    "\x89PNG\r\n\x1a\n\0\0\0\rIHDR\x7f\xff\xff\xff\x7f\xff\xff\xff\x08\x06\0\0\0"s,
    "GIF89a\xff\xff\xff\xff\xf7"s, "\xff\xd8\xff\xe0\0\x10JFIF\0\x01\x02"s,
    bmp(30000, 1).substr(0, 22) + "\x30\x75\0\0"s + bmp(30000, 1).substr(26, 28), // as high as wide
};

std::string junk(std::size_t size) {
    std::minstd_rand random(7);
    std::string bytes(size, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random() >> 8);
    }
    return bytes;
}

TEST_F(HostileImageTest, AnyStreamMayHoldAnyFormat) {
    for (const char* code : kCodes) {
        EXPECT_EQ(setPicture(*containerOf({{code, bmp(3, 2)}})), "0") << code;
        EXPECT_TRUE(hasPicture()) << code;
    }
}

TEST_F(HostileImageTest, WhatOnlyBeginsLikeAPictureIsNone) {
    for (const char* code : kCodes) {
        for (const std::string& start : kStarts) {
            for (const std::size_t size : {0, 1, 100, 70000}) {
                EXPECT_EQ(setPicture(*containerOf({{"BMPf", bmp(3, 2)}})), "0");
                OwnedBinaryData container;
                container->AddSIZEData(30, 20);
                add(*container, {code, start + junk(size)});
                EXPECT_EQ(setPicture(*container), "!!ERROR!!") << code << " " << size;
                EXPECT_EQ(lastErrorNumber(), "-8025") << code << " " << size;
                EXPECT_FALSE(hasPicture()) << code << " " << size;
            }
        }
    }
}

// Only the first known code counts, even if it holds nothing and another one a picture.
TEST_F(HostileImageTest, AStreamOfNothingHidesTheOthers) {
    EXPECT_EQ(setPicture(*containerOf({{"JPEG", bmp(3, 2)}, {"PNGf", ""}})), "!!ERROR!!");
    EXPECT_EQ(lastErrorNumber(), "-8025");
}

// Streams without a byte are no container at all.
TEST_F(HostileImageTest, StreamsOfNothingAreAnEmptyContainer) {
    EXPECT_EQ(setPicture(*containerOf({{"BMPf", bmp(3, 2)}})), "0");
    OwnedBinaryData container;
    add(*container, {"FILE", ""});
    add(*container, {"PNGf", ""});
    EXPECT_EQ(container->GetTotalSize(), 0U);
    EXPECT_EQ(setPicture(*container), "0");
    EXPECT_FALSE(hasPicture());
}

TEST_F(HostileImageTest, ThePicturesSizeMayBeAnything) {
    const std::pair<short, short> sizes[] = {{0, 0}, {-1, -32768}, {32767, 32767}, {1, 1}};
    for (const auto& [width, height] : sizes) {
        OwnedBinaryData container;
        container->AddSIZEData(width, height);
        add(*container, {"BMPf", bmp(300, 200)});
        EXPECT_EQ(setPicture(*container), "0");
        short readWidth = 0;
        short readHeight = 0;
        getPicture()->GetBinaryData().GetSIZEData(readWidth, readHeight);
        EXPECT_EQ(readWidth, 300);
    }
    for (const std::string bytes : {"", "x", "xyz", "longer than it may be"}) {
        OwnedBinaryData container;
        add(*container, {"SIZE", bytes});
        add(*container, {"BMPf", bmp(300, 200)});
        EXPECT_EQ(setPicture(*container), "0") << bytes;
        EXPECT_TRUE(hasPicture());
    }
}

TEST_F(HostileImageTest, DamagedPicturesNeitherCrashNorHang) {
    std::minstd_rand random(11);
    NSBitmapImageRep* bitmap = [NSBitmapImageRep imageRepWithData:dataOf(bmp(12, 9))];
    for (const NSBitmapImageFileType format : {NSBitmapImageFileTypePNG, NSBitmapImageFileTypeJPEG,
                                               NSBitmapImageFileTypeGIF, NSBitmapImageFileTypeBMP}) {
        NSData* data = [bitmap representationUsingType:format properties:nil];
        const std::string whole(static_cast<const char*>([data bytes]), [data length]);
        for (int i = 0; i < 100; ++i) {
            std::string damaged = whole.substr(0, random() % 3 == 0 ? random() % whole.size() : whole.size());
            for (unsigned changes = random() % 4; changes > 0 && !damaged.empty(); --changes) {
                damaged[random() % damaged.size()] = static_cast<char>(random());
            }
            const std::string answer = setPicture(*containerOf({{kCodes[i % 4], damaged}}));
            EXPECT_EQ(lastErrorNumber(), answer == "0" ? "0" : "-8025");
            EXPECT_TRUE(answer != "0" || hasPicture());
            const OwnedData result = getPicture();
            EXPECT_EQ(result->GetNativeType(), hasPicture() ? fmx::Data::kDTBinary : fmx::Data::kDTText);
        }
    }
}

// The process's memory in KiB: a line of /proc/self/status.
long memory(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(name + ":")) {
            return std::stol(line.substr(name.size() + 1));
        }
    }
    ADD_FAILURE() << "no " << name;
    return 0;
}

// What is in use; its peak begins here.
long memoryNow() {
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << 5;
    return memory("VmRSS");
}

// Sanitizers keep memory of their own for each byte.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMemoryIsMeasured = false;
#else
constexpr bool kMemoryIsMeasured = true;
#endif

TEST_F(HostileImageTest, ALargeStreamOfJunkIsRefusedInProportion) {
    constexpr long kMegabytes = 64;
    std::string bytes = junk(kMegabytes << 20U);
    for (const std::string& start : {std::string(), kStarts[0], kStarts[1], kStarts[2], kStarts[3]}) {
        bytes.replace(0, start.size(), start);
        OwnedBinaryData container;
        container->AddSIZEData(30, 20);
        container->Add(*OwnedQuadChar('J', 'P', 'E', 'G'), static_cast<fmx::uint32>(bytes.size()),
                       bytes.data());
        const long before = memoryNow();
        const auto began = std::chrono::steady_clock::now();
        EXPECT_EQ(setPicture(*container), "!!ERROR!!");
        EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(20));
        EXPECT_EQ(lastErrorNumber(), "-8025");
        if (kMemoryIsMeasured) {
            EXPECT_LT(memory("VmHWM") - before, 2 * kMegabytes * 1024) << start;
        }
    }
}

// What a small file unpacks to is bounded by the picture, several times over.
TEST_F(HostileImageTest, ALargePictureTakesAFewTimesItsSize) {
    const std::string large = bmp(2000, 1500);
    const long size = static_cast<long>(large.size()) / 1024;
    {
        const Pool pool;
        NSBitmapImageRep* bitmap = [NSBitmapImageRep imageRepWithData:dataOf(large)];
        ASSERT_TRUE([person_ setImageData:[bitmap representationUsingType:NSBitmapImageFileTypePNG
                                                               properties:nil]]);
    }
    const long before = memoryNow();
    const OwnedData result = getPicture();
    short width = 0;
    short height = 0;
    EXPECT_EQ(result->GetBinaryData().GetSIZEData(width, height), 0);
    EXPECT_EQ(width, 2000);
    if (kMemoryIsMeasured) {
        EXPECT_LT(memory("VmHWM") - before, 8 * size);
    }
}

} // namespace

#include "host/values/picture.h"

#include "host/values/container_file.h"

#include <gtest/gtest.h>
#include <string>

namespace host {

namespace {

Bytes bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

// The bytes of a literal with zeros in it.
template <size_t n>
Bytes raw(const char (&text)[n]) {
    return bytesOf(std::string(text, n - 1));
}

const Bytes kPng = raw("\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR\0\0\x01\x2C\0\0\0\xC8\x08\6\0\0\0");
const Bytes kGif = raw("GIF87a\x2C\x01\xC8\0\xF0\0\0");

Bytes bmp(uint32_t width, uint32_t height, unsigned char header = 40) {
    Bytes bytes(54);
    bytes[0] = 'B';
    bytes[1] = 'M';
    bytes[14] = header;
    for (size_t i = 0; i < 4; ++i) {
        bytes[18 + i] = static_cast<unsigned char>(width >> 8 * i);
        bytes[22 + i] = static_cast<unsigned char>(height >> 8 * i);
    }
    return bytes;
}

// A JPEG with [before] between its start and its frame of 300 by 200 pixels.
Bytes jpeg(const std::string& before, char frame = '\xC0') {
    const std::string start("\xFF\xD8\xFF\xE0\0\x04JF", 8);
    const std::string size("\0\x11\x08\0\xC8\x01\x2C\3", 8);
    return bytesOf(start + before + "\xFF" + frame + size);
}

void expectPicture(const Bytes& bytes, const char (&type)[5], uint32_t width, uint32_t height) {
    const auto header = readPictureHeader(bytes);
    ASSERT_TRUE(header) << type;
    EXPECT_EQ(*header, (PictureHeader{StreamType::of(type), width, height})) << type;
}

TEST(PictureTest, TellsKindAndSizeByTheHeader) {
    expectPicture(kPng, "PNGf", 300, 200);
    expectPicture(kGif, "GIFf", 300, 200);
    expectPicture(bmp(300, 200), "BMPf", 300, 200);
    expectPicture(bmp(300, 200, 124), "BMPf", 300, 200);
    expectPicture(bmp(70'000, 0U - 200U), "BMPf", 70'000, 200); // rows from the top
    Bytes old = bmp(0, 0, 12);
    old[18] = 3;
    old[20] = 4;
    expectPicture(old, "BMPf", 3, 4);
}

TEST(PictureTest, FindsTheFrameOfAJpeg) {
    expectPicture(jpeg(""), "JPEG", 300, 200);
    expectPicture(jpeg("", '\xC2'), "JPEG", 300, 200); // progressive
    const std::string tables("\xFF\xC4\0\3x\xFF\xDB\0\4xy\xFF\xFF\xFF\xD0", 14);
    expectPicture(jpeg(tables), "JPEG", 300, 200);
    // A small picture inside a segment is not the picture.
    const std::string preview("\xFF\xE1\0\x0C\xFF\xD8\xFF\xC0\0\x11\x08\0\1\0", 14);
    expectPicture(jpeg(preview), "JPEG", 300, 200);
    EXPECT_FALSE(readPictureHeader(jpeg(std::string("\xFF\xE1\xFF\xFF", 4)))); // leads beyond the end
    EXPECT_FALSE(readPictureHeader(jpeg("x")));
}

TEST(PictureTest, EverythingElseIsNone) {
    for (const char* text : {"", "B", "BM", "BMW is no picture, it is a text that begins like one", "GIF89",
                             "GIF90a....", "\xFF\xD8\xFF", "\x89PNG\r\n\x1A\n", "hello"}) {
        EXPECT_FALSE(readPictureHeader(bytesOf(text))) << text;
    }
    EXPECT_FALSE(readPictureHeader(bmp(0, 5)));
    for (const Bytes& whole : {kPng, kGif, jpeg(""), bmp(1, 1)}) {
        for (size_t size = 0; size < 9; ++size) { // no header is that short
            EXPECT_FALSE(readPictureHeader(Bytes(whole.begin(), whole.begin() + static_cast<long>(size))));
        }
    }
}

TEST(ContainerFileTest, APictureHasItsNameAndSizeFirst) {
    const Container container = pictureContainer(u"a.png", kPng);
    ASSERT_EQ(container.count(), 3U);
    EXPECT_EQ(container.at(0).type(), Container::kFileNames);
    EXPECT_EQ(container.at(1).type(), Container::kSize);
    EXPECT_EQ(container.at(2).type(), StreamType::of("PNGf"));
    EXPECT_EQ(container.fileNames(), u"a.png");
    EXPECT_EQ(container.pictureSize(), std::pair(int16_t{300}, int16_t{200}));
    EXPECT_EQ(fileStream(container), &container.at(2));
}

TEST(ContainerFileTest, ALargePictureHasTheLargestSize) {
    const Container container = pictureContainer(u"a.bmp", bmp(32'768, 0x7FFF'FFFF));
    EXPECT_EQ(container.pictureSize(), std::pair(int16_t{32'767}, int16_t{32'767}));
    EXPECT_EQ(pictureSides(container), (std::pair<int64_t, int64_t>(32'768, 0x7FFF'FFFF)));
}

TEST(ContainerFileTest, WhatIsNoPictureIsAFile) {
    for (const Container& container :
         {pictureContainer(u"a.png", bytesOf("text")), fileContainer(u"a.png", bytesOf("text"))}) {
        ASSERT_EQ(container.count(), 2U);
        EXPECT_EQ(container.at(1).type(), kFileStream);
        EXPECT_EQ(fileStream(container)->bytes(), bytesOf("text"));
        EXPECT_EQ(pictureSides(container), std::nullopt);
    }
    EXPECT_EQ(fileContainer(u"a", kPng).at(1).type(), kFileStream);
}

TEST(ContainerFileTest, OneOfSeveralStreamsIsTheFile) {
    Container container;
    EXPECT_EQ(fileStream(container), nullptr);
    container.setFileNames(u"a");
    container.setPictureSize(7, 8);
    EXPECT_EQ(fileStream(container), nullptr);
    EXPECT_EQ(pictureSides(container), (std::pair<int64_t, int64_t>(7, 8)));
    container.set(StreamType::of("SOND"), {1});
    container.set(StreamType::of("GIFf"), bmp(3, 4));
    EXPECT_EQ(fileStream(container)->type(), StreamType::of("SOND"));
    container.set(StreamType::of("BMPf"), bmp(3, 4));
    EXPECT_EQ(fileStream(container)->type(), StreamType::of("BMPf"));
    EXPECT_EQ(pictureSides(container), (std::pair<int64_t, int64_t>(3, 4)));
    container.set(kFileStream, {2});
    EXPECT_EQ(fileStream(container)->type(), kFileStream);
}

} // namespace

} // namespace host

#include "host/values/container.h"

#include <gtest/gtest.h>

namespace host {

namespace {

constexpr StreamType kPng = StreamType::of("PNGf");
constexpr StreamType kJpeg = StreamType::of("JPEG");

TEST(ContainerTest, KeepsOneStreamOfEachTypeInOrder) {
    Container container;
    EXPECT_TRUE(container.isEmpty());
    container.setPictureSize(3, -2);
    container.set(kPng, {1, 2, 3});
    container.set(kJpeg, {});
    container.set(kPng, {4});
    EXPECT_EQ(container.count(), 3U);
    EXPECT_EQ(container.totalSize(), 5U);
    EXPECT_EQ(container.find(Container::kSize), 0U);
    EXPECT_EQ(container.find(kPng), 1U);
    EXPECT_EQ(container.at(1).bytes(), (Bytes{4}));
    EXPECT_TRUE(container.remove(kPng));
    EXPECT_FALSE(container.remove(kPng));
    EXPECT_EQ(container.find(kPng), std::nullopt);
    EXPECT_EQ(container.find(kJpeg), 1U);
    EXPECT_THROW(container.at(2), std::out_of_range);
    container.clear();
    EXPECT_TRUE(container.isEmpty());
}

TEST(ContainerTest, TellsNamesAndSize) {
    Container container;
    EXPECT_EQ(container.fileNames(), std::nullopt);
    EXPECT_EQ(container.pictureSize(), std::nullopt);
    const std::u16string names = {u'a', 0, 0xD800, 0x00E4};
    container.setFileNames(names);
    container.setPictureSize(-32768, 32767);
    EXPECT_EQ(container.fileNames(), names);
    EXPECT_EQ(container.pictureSize(), std::pair(int16_t{-32768}, int16_t{32767}));
    container.set(Container::kSize, {1, 2, 3});
    EXPECT_EQ(container.pictureSize(), std::nullopt);
}

TEST(StreamTypeTest, IsFourCharactersAndANumber) {
    EXPECT_EQ(kPng.code(), 0x504E4766U);
    StreamType type;
    EXPECT_EQ(type.code(), 0U);
    type.setCode(0xFF000061U);
    EXPECT_EQ(type.characters[0], '\xFF');
    EXPECT_EQ(type.characters[3], 'a');
    EXPECT_GT(type, kPng); // by unsigned characters
}

} // namespace

} // namespace host

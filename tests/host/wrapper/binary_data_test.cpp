#include "tests/host/wrapper/support.h"

#include <array>
#include <vector>

namespace {

using fmx::BinaryDataUniquePtr;
using fmx::QuadCharUniquePtr;

void add(fmx::BinaryData& container, const fmx::QuadChar& type, std::string bytes) {
    EXPECT_EQ(container.Add(type, static_cast<fmx::uint32>(bytes.size()), bytes.data()), 0);
}

std::string streamOf(const fmx::BinaryData& container, fmx::int32 index) {
    std::string bytes(container.GetSize(index), '\0');
    EXPECT_EQ(container.GetData(index, 0, static_cast<fmx::uint32>(bytes.size()), bytes.data()), 0);
    return bytes;
}

TEST(WrapperQuadCharTest, HoldsFourCharacters) {
    const QuadCharUniquePtr empty;
    EXPECT_EQ(empty->GetMacType(), 0U);
    const QuadCharUniquePtr png('P', 'N', 'G', 'f');
    EXPECT_EQ(png->GetMacType(), 0x504E4766U);
    const fmx::QuadChar& constant = *png;
    EXPECT_EQ(constant[3], 'f');
    const QuadCharUniquePtr copy(*png);
    EXPECT_TRUE(*copy == *png);
    copy->SetMacType(0x514E4766U);
    EXPECT_TRUE(*copy != *png);
    EXPECT_TRUE(*png < *copy);
    EXPECT_TRUE(*png <= *copy);
    EXPECT_TRUE(*copy > *png);
    EXPECT_TRUE(*copy >= *png);
    EXPECT_EQ(&(*empty = *copy), empty.get());
    EXPECT_EQ((*empty)[0], 'Q');
    empty->SetMacType(0xFF4E4766U);
    EXPECT_TRUE(*empty > *copy); // characters are unsigned
    EXPECT_THROW((*empty)[4], std::exception);
    EXPECT_THROW(constant[-1], std::exception);
}

class WrapperBinaryDataTest : public testing::Test {
  protected:
    QuadCharUniquePtr png_{'P', 'N', 'G', 'f'};
    QuadCharUniquePtr jpeg_{'J', 'P', 'E', 'G'};
    QuadCharUniquePtr gif_{'G', 'I', 'F', 'f'};
    BinaryDataUniquePtr container_;
};

TEST_F(WrapperBinaryDataTest, KeepsStreamsInOrder) {
    EXPECT_EQ(container_->GetCount(), 0);
    EXPECT_EQ(container_->GetTotalSize(), 0U);
    EXPECT_EQ(container_->GetIndex(*png_), -1);
    add(*container_, *png_, "png");
    add(*container_, *jpeg_, "jpeg");
    add(*container_, *gif_, "");
    add(*container_, *jpeg_, std::string("\0J", 2)); // replaces, in its place
    EXPECT_EQ(container_->GetCount(), 3);
    EXPECT_EQ(container_->GetIndex(*png_), 0);
    EXPECT_EQ(container_->GetIndex(*jpeg_), 1);
    EXPECT_EQ(container_->GetIndex(*gif_), 2);
    EXPECT_EQ(container_->GetTotalSize(), 5U);
    EXPECT_EQ(streamOf(*container_, 1), std::string("\0J", 2));
    const QuadCharUniquePtr type;
    container_->GetType(1, *type);
    EXPECT_TRUE(*type == *jpeg_);
    EXPECT_TRUE(container_->Remove(*png_));
    EXPECT_FALSE(container_->Remove(*png_));
    EXPECT_EQ(container_->GetIndex(*jpeg_), 0);
    container_->RemoveAll();
    EXPECT_EQ(container_->GetCount(), 0);
}

TEST_F(WrapperBinaryDataTest, GivesRangesAndRefusesOthers) {
    add(*container_, *png_, "0123");
    std::array<char, 4> buffer{'#', '#', '#', '#'};
    EXPECT_EQ(container_->GetData(0, 1, 2, buffer.data()), 0);
    EXPECT_EQ(buffer, (std::array<char, 4>{'1', '2', '#', '#'}));
    EXPECT_EQ(container_->GetData(0, 4, 0, nullptr), 0);
    EXPECT_NE(container_->GetData(0, 1, 4, buffer.data()), 0);
    EXPECT_NE(container_->GetData(0, 5, 0, buffer.data()), 0);
    EXPECT_NE(container_->GetData(0, 1, 0xFFFFFFFF, buffer.data()), 0);
    EXPECT_NE(container_->GetData(1, 0, 1, buffer.data()), 0);
    EXPECT_NE(container_->GetData(-1, 0, 1, buffer.data()), 0);
    EXPECT_EQ(buffer, (std::array<char, 4>{'1', '2', '#', '#'}));
    EXPECT_THROW(container_->GetData(0, 0, 1, nullptr), std::exception);
    EXPECT_THROW(container_->GetSize(1), std::exception);
    EXPECT_THROW(container_->GetSize(-1), std::exception);
    EXPECT_THROW(container_->GetType(1, *gif_), std::exception);
    EXPECT_THROW(container_->Add(*gif_, 1, nullptr), std::exception);
    EXPECT_EQ(container_->Add(*gif_, 0, nullptr), 0);
}

TEST_F(WrapperBinaryDataTest, IsCopiedAndCompared) {
    add(*container_, *png_, "png");
    const BinaryDataUniquePtr copy(*container_);
    EXPECT_TRUE(*copy == *container_);
    add(*copy, *gif_, "gif");
    EXPECT_TRUE(*copy != *container_);
    EXPECT_EQ(container_->GetCount(), 1);
    EXPECT_EQ(&(*container_ = *copy), container_.get());
    EXPECT_TRUE(*copy == *container_);
}

TEST_F(WrapperBinaryDataTest, KeepsNamesAndSize) {
    short width = 1;
    short height = 2;
    const auto text = hostText(u"kept");
    EXPECT_NE(container_->GetFNAMData(*text), 0);
    EXPECT_NE(container_->GetSIZEData(width, height), 0);
    EXPECT_EQ(unitsOf(*text), u"kept");
    EXPECT_EQ(width, 1);
    EXPECT_EQ(height, 2);
    const std::u16string name = {u'a', 0, 0xD800};
    EXPECT_EQ(container_->AddFNAMData(*hostText(name)), 0);
    EXPECT_EQ(container_->AddSIZEData(-5, 300), 0);
    EXPECT_EQ(container_->AddSIZEData(-6, 301), 0);
    EXPECT_EQ(container_->GetFNAMData(*text), 0);
    EXPECT_EQ(container_->GetSIZEData(width, height), 0);
    EXPECT_EQ(unitsOf(*text), name);
    EXPECT_EQ(width, -6);
    EXPECT_EQ(height, 301);
    EXPECT_EQ(container_->GetIndex(*QuadCharUniquePtr('F', 'N', 'A', 'M')), 0);
    EXPECT_EQ(container_->GetIndex(*QuadCharUniquePtr('S', 'I', 'Z', 'E')), 1);
}

std::string piece(fmx::BinaryData& container, fmx::uint32 context, std::string bytes) {
    const auto size = static_cast<fmx::uint32>(bytes.size());
    return container.AddAppend(context, size, bytes.data()) == 0 ? "added" : "refused";
}

TEST_F(WrapperBinaryDataTest, TakesStreamsInPieces) {
    add(*container_, *gif_, "gif");
    fmx::uint32 png = 0;
    fmx::uint32 jpeg = 0;
    ASSERT_EQ(container_->AddBegin(*png_, png), 0);
    ASSERT_EQ(container_->AddBegin(*jpeg_, jpeg), 0);
    EXPECT_NE(png, jpeg);
    EXPECT_EQ(piece(*container_, png, "one "), "added");
    EXPECT_EQ(piece(*container_, jpeg, "other"), "added");
    EXPECT_EQ(piece(*container_, png, ""), "added");
    EXPECT_EQ(piece(*container_, png, "two"), "added");
    EXPECT_EQ(container_->GetCount(), 1); // until they are finished
    EXPECT_EQ(container_->AddFinish(png), 0);
    EXPECT_EQ(container_->AddFinish(jpeg), 0);
    EXPECT_EQ(streamOf(*container_, container_->GetIndex(*png_)), "one two");
    EXPECT_EQ(streamOf(*container_, container_->GetIndex(*jpeg_)), "other");

    EXPECT_EQ(piece(*container_, png, "late"), "refused");
    EXPECT_NE(container_->AddFinish(png), 0);
    EXPECT_NE(container_->AddFinish(0), 0);
    ASSERT_EQ(container_->AddBegin(*gif_, png), 0);
    const BinaryDataUniquePtr stranger;
    EXPECT_EQ(piece(*stranger, png, "x"), "refused");
    EXPECT_NE(stranger->AddFinish(png), 0);
    EXPECT_THROW(container_->AddAppend(png, 1, nullptr), std::exception);
    EXPECT_EQ(container_->AddFinish(png), 0); // replaces, in its place
    EXPECT_EQ(container_->GetIndex(*gif_), 0);
    EXPECT_EQ(container_->GetSize(0), 0U);
}

TEST_F(WrapperBinaryDataTest, IsMadeOfAFileAtOnceOrInPieces) {
    std::string bytes = "content";
    const BinaryDataUniquePtr whole(*hostText(u"a.txt"), 7U, bytes.data());
    fmx::uint32 context = 0;
    const BinaryDataUniquePtr pieces(*hostText(u"a.txt"), context);
    EXPECT_EQ(piece(*pieces, context, "con"), "added");
    EXPECT_EQ(piece(*pieces, context, "tent"), "added");
    EXPECT_TRUE(*pieces != *whole);
    EXPECT_EQ(pieces->AddFinish(context), 0);
    EXPECT_TRUE(*pieces == *whole);
    const fmx::TextUniquePtr name;
    EXPECT_EQ(pieces->GetFNAMData(*name), 0);
    EXPECT_EQ(unitsOf(*name), u"a.txt");
    const QuadCharUniquePtr file('F', 'I', 'L', 'E');
    EXPECT_EQ(streamOf(*pieces, pieces->GetIndex(*file)), "content");
}

TEST_F(WrapperBinaryDataTest, RefusesIndexesItDoesNotHave) {
    add(*container_, *png_, "png");
    char byte = '#';
    for (const fmx::int32 index : {-1, 1, 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
        SCOPED_TRACE(index);
        EXPECT_NE(container_->GetData(index, 0, 1, &byte), 0);
        EXPECT_THROW(container_->GetSize(index), std::exception);
        EXPECT_THROW(container_->GetType(index, *jpeg_), std::exception);
    }
    EXPECT_EQ(byte, '#');
    EXPECT_EQ((*jpeg_)[0], 'J');
}

} // namespace

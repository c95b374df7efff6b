#include "tests/host/wrapper/support.h"

namespace {

using fmx::Data;
using fmx::DataUniquePtr;

class WrapperDataTest : public testing::Test {
  protected:
    fmx::errcode setText(std::u16string_view text, fmx::int32 type = Data::kDTText) {
        return data_->SetAsText(*hostText(text), data_->GetLocale(), type);
    }
    std::u16string text() { return unitsOf(data_->GetAsText()); }

    DataUniquePtr data_;
};

TEST_F(WrapperDataTest, IsEmptyTextAtFirst) {
    EXPECT_TRUE(data_->IsEmpty());
    EXPECT_TRUE(data_->IsValid());
    EXPECT_FALSE(data_->IsFindRequest());
    EXPECT_EQ(data_->GetNativeType(), Data::kDTText);
    EXPECT_EQ(text(), u"");
    EXPECT_FALSE(data_->GetAsBoolean());
    EXPECT_EQ(data_->GetBinaryData().GetCount(), 0);
}

TEST_F(WrapperDataTest, ReadsTextAsEveryType) {
    EXPECT_EQ(setText(u"12/25/2010 14:30"), 0);
    EXPECT_EQ(data_->GetNativeType(), Data::kDTText);
    EXPECT_EQ(text(), u"12/25/2010 14:30");
    EXPECT_EQ(data_->GetAsNumber().AsFloat(), 122520101430.0);
    EXPECT_EQ(data_->GetAsDate().GetDay(), 25);
    EXPECT_EQ(data_->GetAsDate().GetHour(), 0);
    EXPECT_EQ(data_->GetAsTime().GetHour(), 14);
    EXPECT_EQ(data_->GetAsTime().GetYear(), 1);
    EXPECT_EQ(data_->GetAsTimeStamp().GetHour(), 14);
    EXPECT_EQ(data_->GetAsTimeStamp().GetMonth(), 12);
    EXPECT_TRUE(data_->GetAsBoolean());
}

TEST_F(WrapperDataTest, AnswersStandUntilItIsSetAgain) {
    setText(u"7");
    const fmx::Text& text = data_->GetAsText();
    const fmx::FixPt& number = data_->GetAsNumber();
    data_->GetAsDate();
    data_->GetAsTime();
    data_->GetAsTimeStamp();
    EXPECT_EQ(&data_->GetAsText(), &text);
    EXPECT_EQ(&data_->GetAsNumber(), &number);
    EXPECT_EQ(number.AsLong(), 7);
    setText(u"8");
    EXPECT_EQ(unitsOf(data_->GetAsText()), u"8");
    EXPECT_EQ(data_->GetAsNumber().AsLong(), 8);
    // From its own answers.
    data_->SetAsNumber(data_->GetAsNumber());
    EXPECT_EQ(data_->SetAsText(data_->GetAsText(), data_->GetLocale()), 0);
    data_->SetAsTimeStamp(data_->GetAsTimeStamp());
    data_->SetBinaryData(data_->GetBinaryData());
    EXPECT_TRUE(data_->IsEmpty());
}

TEST_F(WrapperDataTest, IsSetWithANativeType) {
    const fmx::FixPtUniquePtr number(5);
    data_->SetAsNumber(*number);
    EXPECT_EQ(data_->GetNativeType(), Data::kDTNumber);
    EXPECT_EQ(text(), u"5");
    data_->SetAsNumber(*number, Data::kDTText);
    EXPECT_EQ(data_->GetNativeType(), Data::kDTText);
    data_->SetAsNumber(*number, Data::kDTBoolean);
    EXPECT_EQ(data_->GetNativeType(), Data::kDTBoolean);
    EXPECT_EQ(text(), u"1");
    data_->SetAsNumber(*fmx::FixPtUniquePtr(0), Data::kDTBoolean);
    EXPECT_EQ(text(), u"0");
    EXPECT_EQ(setText(u"", Data::kDTBoolean), 0);
    EXPECT_EQ(data_->GetNativeType(), Data::kDTBoolean);
    EXPECT_TRUE(data_->IsEmpty()) << "neither true nor false";
    EXPECT_EQ(setText(u"a1,5", Data::kDTNumber), 0);
    EXPECT_EQ(text(), u"15");
    EXPECT_EQ(setText(u"2:30 PM", Data::kDTTime), 0);
    EXPECT_EQ(text(), u"14:30:00");
}

TEST_F(WrapperDataTest, HoldsDatesAndTimes) {
    const fmx::DateTimeUniquePtr moment;
    EXPECT_EQ(moment->SetNormalizedDate(12, 25, 2010), 0);
    EXPECT_EQ(moment->SetNormalizedTime(1, 2, 3, 0), 0);
    data_->SetAsDate(*moment);
    EXPECT_EQ(data_->GetNativeType(), Data::kDTDate);
    EXPECT_EQ(text(), u"12/25/2010");
    data_->SetAsTime(*moment);
    EXPECT_EQ(data_->GetNativeType(), Data::kDTTime);
    EXPECT_EQ(text(), u"1:02:03");
    data_->SetAsTimeStamp(*moment);
    EXPECT_EQ(data_->GetNativeType(), Data::kDTTimeStamp);
    EXPECT_EQ(text(), u"12/25/2010 1:02:03 AM");
    EXPECT_TRUE(data_->GetAsTimeStamp() == *moment);
    data_->SetDateTime(*moment, Data::kDTDate, Data::kDTText);
    EXPECT_EQ(data_->GetNativeType(), Data::kDTText);
    EXPECT_EQ(text(), u"12/25/2010");
    data_->SetDateTime(*moment, Data::kDTTime, Data::kDTTime);
    EXPECT_EQ(text(), u"1:02:03");
    data_->SetDateTime(*moment, Data::kDTTimeStamp, Data::kDTTimeStamp);
    EXPECT_EQ(text(), u"12/25/2010 1:02:03 AM");
    EXPECT_THROW(data_->SetDateTime(*moment, Data::kDTNumber, Data::kDTNumber), std::exception);
    EXPECT_EQ(text(), u"12/25/2010 1:02:03 AM");
}

TEST_F(WrapperDataTest, IsInvalidWhenItCannotBeReadAsItsType) {
    EXPECT_NE(setText(u"rubbish", Data::kDTDate), 0);
    EXPECT_FALSE(data_->IsValid());
    EXPECT_FALSE(data_->IsEmpty());
    EXPECT_EQ(data_->GetNativeType(), Data::kDTInvalid);
    EXPECT_EQ(text(), u"?");
    EXPECT_EQ(setText(u"5"), 0);
    EXPECT_TRUE(data_->IsValid());
    EXPECT_THROW(setText(u"5", 99), std::exception);
    EXPECT_THROW(data_->Clear(-1), std::exception);
    EXPECT_EQ(text(), u"5");
}

TEST_F(WrapperDataTest, IsClearedAndConverted) {
    setText(u"12/25/2010");
    data_->ConvertData(Data::kDTTimeStamp);
    EXPECT_EQ(data_->GetNativeType(), Data::kDTTimeStamp);
    EXPECT_EQ(text(), u"12/25/2010 12:00:00 AM");
    data_->ConvertData(Data::kDTNumber);
    EXPECT_EQ(text(), u"63428832000");
    data_->ConvertData(Data::kDTBinary);
    EXPECT_FALSE(data_->IsValid());
    data_->ConvertData(Data::kDTBoolean);
    EXPECT_FALSE(data_->IsValid()) << "what was lost does not come back";
    for (fmx::int32 type = Data::kDTText; type <= Data::kDTBoolean; ++type) {
        data_->Clear(type);
        EXPECT_TRUE(data_->IsEmpty());
        EXPECT_EQ(data_->GetNativeType(), type);
    }
    data_->Clear(Data::kDTInvalid);
    EXPECT_FALSE(data_->IsValid());
    setText(u"x");
    data_->Clear();
    EXPECT_EQ(data_->GetNativeType(), Data::kDTInvalid);
}

TEST_F(WrapperDataTest, HoldsContainers) {
    const fmx::BinaryDataUniquePtr container;
    container->AddFNAMData(*hostText(u"a.png"));
    data_->SetBinaryData(*container, false);
    EXPECT_EQ(data_->GetNativeType(), Data::kDTText);
    EXPECT_EQ(text(), u"a.png");
    data_->SetBinaryData(*container);
    EXPECT_EQ(data_->GetNativeType(), Data::kDTBinary);
    EXPECT_TRUE(data_->GetBinaryData() == *container);
    EXPECT_EQ(text(), u"a.png");
    EXPECT_TRUE(data_->GetAsBoolean());
    container->RemoveAll();
    container->Add(*fmx::QuadCharUniquePtr('P', 'N', 'G', 'f'), 1, std::string("x").data());
    data_->SetBinaryData(*container, false);
    EXPECT_EQ(data_->GetNativeType(), Data::kDTBinary) << "bytes are more than names";
    container->RemoveAll();
    data_->SetBinaryData(*container, true);
    EXPECT_EQ(data_->GetNativeType(), Data::kDTBinary);
    EXPECT_TRUE(data_->IsEmpty());
}

TEST_F(WrapperDataTest, KeepsItsLocale) {
    const fmx::LocaleUniquePtr locale(fmx::Locale::kType_UnicodeRaw);
    EXPECT_EQ(data_->SetAsText(*hostText(u"x"), *locale), 0);
    const fmx::Locale& kept = data_->GetLocale();
    EXPECT_NE(&kept, locale.get());
    EXPECT_EQ(&data_->GetLocale(), &kept);
}

TEST_F(WrapperDataTest, KeepsTheStylesOfItsText) {
    const fmx::TextUniquePtr text = hostText(u"plain bold");
    const fmx::CharacterStyleUniquePtr bold;
    bold->EnableFace(fmx::CharacterStyle::kFace_Bold);
    text->SetStyle(*bold, 6, 4);
    data_->SetAsText(*text, data_->GetLocale());
    fmx::DataVectUniquePtr vector;
    vector->PushBack(*data_);
    const fmx::CharacterStyleUniquePtr style;
    vector->AtAsText(0).GetStyle(*style, 6);
    EXPECT_TRUE(style->IsFaceEnabled(fmx::CharacterStyle::kFace_Bold));
    vector->AtAsText(0).GetStyle(*style, 5);
    EXPECT_FALSE(style->IsFaceEnabled(fmx::CharacterStyle::kFace_Bold));
    EXPECT_TRUE(vector->At(0).GetAsText() == *text);
}

TEST_F(WrapperDataTest, IsCopiedWithItsTypeAndReadingsOfItsOwn) {
    setText(u"x1");
    fmx::DataVectUniquePtr vector;
    vector->PushBack(*data_);
    setText(u"x2");
    EXPECT_EQ(vector->AtAsNumber(0).AsLong(), 1);
    EXPECT_EQ(data_->GetAsNumber().AsLong(), 2);
    data_->SetAsNumber(*fmx::FixPtUniquePtr(3));
    vector->PushBack(*data_);
    EXPECT_EQ(unitsOf(vector->AtAsText(1)), u"3");
    EXPECT_EQ(vector->At(1).GetNativeType(), Data::kDTNumber);
}

TEST_F(WrapperDataTest, NumbersFontsByTheirNames) {
    const fmx::ExprEnvUniquePtr environment;
    const fmx::FontID greek = data_->GetFontID(*hostText(u"Alpha"), 1, *environment);
    EXPECT_EQ(data_->GetFontID(*hostText(u"Alpha"), 1, *environment), greek);
    EXPECT_NE(data_->GetFontID(*hostText(u"Beta"), 1, *environment), greek);
    EXPECT_NE(data_->GetFontID(*hostText(u"Alpha"), 2, *environment), greek) << "of another script";
    EXPECT_EQ(data_->GetFontID(*hostText(u""), 1, *environment), fmx::CharacterStyle::kInvalidFont);
    const fmx::TextUniquePtr name;
    fmx::FontScript script = 99;
    EXPECT_TRUE(data_->GetFontInfo(greek, *name, script, *environment));
    EXPECT_EQ(unitsOf(*name), u"Alpha");
    EXPECT_EQ(script, 1);
    const fmx::FontID latin = data_->GetPostscriptFontID(*hostText(u"Gamma-Bold"), *environment);
    EXPECT_TRUE(data_->GetPostscriptFontInfo(latin, *name, *environment));
    EXPECT_EQ(unitsOf(*name), u"Gamma-Bold");
    EXPECT_FALSE(data_->GetPostscriptFontInfo(65000, *name, *environment));
    EXPECT_FALSE(data_->GetFontInfo(65535, *name, script, *environment));
    EXPECT_EQ(unitsOf(*name), u"Gamma-Bold");
}

} // namespace

// Colours, styles, and the styles of a text's characters.
#include "tests/host/wrapper/support.h"

#include <vector>

namespace {

using fmx::CharacterStyle;
using fmx::CharacterStyleUniquePtr;
using fmx::Color;
using fmx::ColorUniquePtr;
using fmx::Face;
using fmx::Text;
using fmx::TextUniquePtr;

TEST(WrapperColorTest, HasFourChannels) {
    const ColorUniquePtr color(1, 2, 3, 4);
    EXPECT_EQ(color->GetRed(), 1);
    EXPECT_EQ(color->GetGreen(), 2);
    EXPECT_EQ(color->GetBlue(), 3);
    EXPECT_EQ(color->GetAlpha(), 4);
    color->SetRed(255);
    color->SetGreen(0x12);
    color->SetBlue(0);
    color->SetAlpha(1);
    EXPECT_EQ(color->GetRedUpsample(), 65535);
    EXPECT_EQ(color->GetGreenUpsample(), 0x1212);
    EXPECT_EQ(color->GetBlueUpsample(), 0);
    EXPECT_EQ(color->GetAlphaUpsample(), 0x101);
    const ColorUniquePtr copy(*color);
    EXPECT_TRUE(*copy == *color);
    EXPECT_EQ(&(*copy = Color::White()), copy.get());
    EXPECT_TRUE(*copy != *color);
    EXPECT_TRUE(*copy == Color::White());
    EXPECT_TRUE(Color::Black() == *ColorUniquePtr(0, 0, 0, 255));
    EXPECT_TRUE(Color::Black() == *ColorUniquePtr());
}

TEST(WrapperColorTest, DiffersByEachChannel) {
    const ColorUniquePtr color(1, 2, 3, 4);
    EXPECT_TRUE(*color == *ColorUniquePtr(1, 2, 3, 4));
    EXPECT_TRUE(*color != *ColorUniquePtr(9, 2, 3, 4));
    EXPECT_TRUE(*color != *ColorUniquePtr(1, 9, 3, 4));
    EXPECT_TRUE(*color != *ColorUniquePtr(1, 2, 9, 4));
    EXPECT_TRUE(*color != *ColorUniquePtr(1, 2, 3, 9));
}

TEST(WrapperCharacterStyleTest, SaysNothingAtFirst) {
    const CharacterStyleUniquePtr style;
    EXPECT_TRUE(style->IsAllDisabled());
    EXPECT_FALSE(style->IsFontEnabled());
    EXPECT_FALSE(style->IsSizeEnabled());
    EXPECT_FALSE(style->IsColorEnabled());
    EXPECT_FALSE(style->IsAnyFaceEnabled());
}

TEST(WrapperCharacterStyleTest, EnablesWhatIsSet) {
    const CharacterStyleUniquePtr style;
    style->SetFont(3);
    EXPECT_TRUE(style->IsFontEnabled());
    style->SetSize(14);
    EXPECT_TRUE(style->IsSizeEnabled());
    style->SetColor(Color::White());
    EXPECT_TRUE(style->IsColorEnabled());
    EXPECT_TRUE(style->GetColor() == Color::White());
    style->DisableFont();
    style->DisableSize();
    style->DisableColor();
    EXPECT_TRUE(style->IsAllDisabled());
    style->EnableFont();
    style->EnableSize();
    style->EnableColor();
    EXPECT_EQ(style->GetFont(), 3);
    EXPECT_EQ(style->GetSize(), 14);
    style->SetFontInformation(5, CharacterStyle::kFace_Italic, 9);
    fmx::FontID font = 0;
    Face face = 0;
    fmx::FontSize size = 0;
    style->GetFontInformation(font, face, size);
    EXPECT_EQ((std::vector<int>{font, face, size}), (std::vector<int>{5, CharacterStyle::kFace_Italic, 9}));
    const CharacterStyleUniquePtr copy(*style);
    EXPECT_TRUE(*copy == *style);
    copy->DisableAll();
    EXPECT_TRUE(copy->IsAllDisabled());
    EXPECT_TRUE(*copy != *style);
    EXPECT_EQ(&(*copy = *style), copy.get());
    EXPECT_TRUE(*copy == *style);
}

TEST(WrapperCharacterStyleTest, CombinesFacesButHasOneLetterCase) {
    const CharacterStyleUniquePtr style;
    style->EnableFace(CharacterStyle::kFace_Bold);
    style->EnableFace(CharacterStyle::kFace_Italic | CharacterStyle::kFace_Uppercase);
    EXPECT_TRUE(style->IsFaceEnabled(CharacterStyle::kFace_Bold | CharacterStyle::kFace_Italic));
    style->EnableFace(CharacterStyle::kFace_Titlecase);
    EXPECT_TRUE(style->IsFaceEnabled(CharacterStyle::kFace_Titlecase));
    EXPECT_FALSE(style->IsFaceEnabled(CharacterStyle::kFace_Uppercase));
    style->EnableFace(CharacterStyle::kFace_Lowercase);
    EXPECT_EQ(style->GetFace(),
              CharacterStyle::kFace_Bold | CharacterStyle::kFace_Italic | CharacterStyle::kFace_Lowercase);
    style->DisableFace(CharacterStyle::kFace_Bold);
    EXPECT_FALSE(style->IsFaceEnabled(CharacterStyle::kFace_Bold));
    style->SetFace(CharacterStyle::kFace_Plain);
    EXPECT_TRUE(style->IsFaceEnabled(CharacterStyle::kFace_Plain));
    EXPECT_FALSE(style->IsAnyFaceEnabled());
    EXPECT_FALSE(style->IsAllDisabled()); // it says that there are none
    style->DisableAllFaces();
    EXPECT_TRUE(style->IsAllDisabled());
    EXPECT_FALSE(style->IsFaceEnabled(CharacterStyle::kFace_Plain)) << "it says nothing of faces";
}

TEST(WrapperCharacterStyleTest, IsMadeWhole) {
    const CharacterStyleUniquePtr style(7, CharacterStyle::kFace_Bold, 24, *ColorUniquePtr(1, 2, 3));
    EXPECT_EQ(style->GetFont(), 7);
    EXPECT_EQ(style->GetFace(), CharacterStyle::kFace_Bold);
    EXPECT_EQ(style->GetSize(), 24);
    EXPECT_TRUE(style->GetColor() == *ColorUniquePtr(1, 2, 3, 255));
    EXPECT_TRUE(style->IsFontEnabled() && style->IsSizeEnabled() && style->IsColorEnabled());
    EXPECT_FALSE(style->IsFaceEnabled(CharacterStyle::kFace_Italic));
}

// Two styles are equal when they say the same; what is disabled has no part in that.
TEST(WrapperCharacterStyleTest, DiffersByEachThingItSays) {
    const CharacterStyleUniquePtr style(7, CharacterStyle::kFace_Bold, 24, *ColorUniquePtr(1, 2, 3));
    const auto differs = [&](auto change) {
        const CharacterStyleUniquePtr other(*style);
        change(*other);
        return *other != *style && !(*style == *other);
    };
    EXPECT_TRUE(differs([](CharacterStyle& other) { other.SetFont(8); }));
    EXPECT_TRUE(differs([](CharacterStyle& other) { other.DisableFont(); }));
    EXPECT_TRUE(differs([](CharacterStyle& other) { other.SetSize(23); }));
    EXPECT_TRUE(differs([](CharacterStyle& other) { other.DisableSize(); }));
    EXPECT_TRUE(differs([](CharacterStyle& other) { other.SetColor(Color::White()); }));
    EXPECT_TRUE(differs([](CharacterStyle& other) { other.DisableColor(); }));
    EXPECT_TRUE(differs([](CharacterStyle& other) { other.SetFace(CharacterStyle::kFace_Italic); }));
    EXPECT_TRUE(differs([](CharacterStyle& other) { other.DisableAllFaces(); }));
    const CharacterStyleUniquePtr silent;
    const CharacterStyleUniquePtr other(*style);
    other->DisableAll();
    EXPECT_TRUE(*silent == *other);
}

CharacterStyleUniquePtr face(int wanted) {
    CharacterStyleUniquePtr style;
    style->EnableFace(static_cast<Face>(wanted));
    return style;
}

// A text with a style for each letter: "b" is bold, "i" italic, "x" both; other letters are plain.
TextUniquePtr styled(std::u16string_view letters) {
    TextUniquePtr text = hostText(letters);
    for (size_t i = 0; i < letters.size(); ++i) {
        const int wanted = (letters[i] == u'b' || letters[i] == u'x' ? CharacterStyle::kFace_Bold : 0) |
                           (letters[i] == u'i' || letters[i] == u'x' ? CharacterStyle::kFace_Italic : 0);
        text->SetStyle(*face(wanted), static_cast<fmx::uint32>(i), 1);
    }
    return text;
}

// Returns the styles as letters, one for each character.
std::u16string stylesOf(const Text& text) {
    std::u16string letters;
    const CharacterStyleUniquePtr style;
    for (fmx::uint32 i = 0; i < text.GetSize(); ++i) {
        text.GetStyle(*style, i);
        const Face faces = style->GetFace();
        letters += u"-bix"[(faces & CharacterStyle::kFace_Bold ? 1 : 0) +
                           (faces & CharacterStyle::kFace_Italic ? 2 : 0)];
    }
    return letters;
}

TEST(WrapperTextStylesTest, AreStandardUntilTheyAreSet) {
    const TextUniquePtr text = hostText(u"abc");
    const CharacterStyleUniquePtr style;
    const CharacterStyleUniquePtr standard;
    text->GetDefaultStyle(*standard);
    EXPECT_EQ(standard->GetSize(), 12);
    EXPECT_TRUE(standard->GetColor() == Color::Black());
    text->GetStyle(*style, 1);
    EXPECT_TRUE(*style == *standard);
    text->SetStyle(*face(CharacterStyle::kFace_Bold), 1, 1);
    text->GetStyle(*style, 1);
    EXPECT_TRUE(*style != *standard);
    EXPECT_EQ(style->GetSize(), 12); // what was left open stays
    text->GetStyle(*style, 99);
    EXPECT_TRUE(*style == *standard);
    text->SetStyle(*face(CharacterStyle::kFace_Italic), 2, Text::kSize_End);
    text->SetStyle(*face(CharacterStyle::kFace_Italic), 99);
    EXPECT_EQ(stylesOf(*text), u"-bi");
    text->SetStyle(*face(CharacterStyle::kFace_Italic));
    EXPECT_EQ(stylesOf(*text), u"ixi");
    text->RemoveStyle(*face(CharacterStyle::kFace_Italic));
    EXPECT_EQ(stylesOf(*text), u"-b-");
    text->ResetAllStyleBuffers();
    EXPECT_EQ(stylesOf(*text), u"---");
    EXPECT_EQ(unitsOf(*text), u"abc");
}

// A style that is removed takes along what it has in common with the text's, and leaves the rest.
TEST(WrapperTextStylesTest, LoseWhatARemovedStyleSaysToo) {
    constexpr Face kFaces = CharacterStyle::kFace_Bold | CharacterStyle::kFace_Uppercase;
    const TextUniquePtr text = hostText(u"a");
    const CharacterStyleUniquePtr own(7, kFaces, 24, *ColorUniquePtr(1, 2, 3));
    const CharacterStyleUniquePtr shown;
    text->SetStyle(*own);
    text->RemoveStyle(*CharacterStyleUniquePtr(8, CharacterStyle::kFace_Lowercase, 23, Color::White()));
    text->GetStyle(*shown, 0);
    EXPECT_TRUE(*shown == *own) << "nothing of it is the text's";

    const CharacterStyleUniquePtr fontAndCase;
    fontAndCase->SetFont(7);
    fontAndCase->EnableFace(CharacterStyle::kFace_Uppercase);
    text->RemoveStyle(*fontAndCase);
    text->GetStyle(*shown, 0);
    EXPECT_EQ(shown->GetFont(), 0);
    EXPECT_EQ(shown->GetFace(), CharacterStyle::kFace_Bold);
    EXPECT_EQ(shown->GetSize(), 24);
    EXPECT_TRUE(shown->GetColor() == own->GetColor());

    text->RemoveStyle(*own);
    const CharacterStyleUniquePtr standard;
    text->GetDefaultStyle(*standard);
    text->GetStyle(*shown, 0);
    EXPECT_TRUE(*shown == *standard);
}

// Each edit changes the styles as it changes the letters for them.
TEST(WrapperTextStylesTest, GoWithTheirCharacters) {
    const std::u16string letters = u"bb-ix--bi";
    const std::u16string others = u"-xi";
    const auto size = static_cast<fmx::uint32>(letters.size());
    for (fmx::uint32 position = 0; position <= size; ++position) {
        for (fmx::uint32 count = 0; count <= size; ++count) {
            SCOPED_TRACE(testing::Message() << position << ", " << count);
            const TextUniquePtr erased = styled(letters);
            erased->DeleteText(position, count);
            EXPECT_EQ(stylesOf(*erased), unitsOf(*erased));
            const TextUniquePtr part;
            part->SetText(*styled(letters), position, count);
            EXPECT_EQ(stylesOf(*part), letters.substr(position, count));
            const TextUniquePtr appended = styled(others);
            appended->AppendText(*styled(letters), position, count);
            EXPECT_EQ(stylesOf(*appended), others + letters.substr(position, count));
        }
        for (const std::u16string& inserted : {others, std::u16string(u"---")}) {
            const TextUniquePtr text = styled(letters);
            text->InsertText(*styled(inserted), position);
            EXPECT_EQ(stylesOf(*text), unitsOf(*text));
        }
        const TextUniquePtr plain = hostText(std::u16string(letters.size(), u'-'));
        plain->InsertText(*styled(others), position);
        EXPECT_EQ(stylesOf(*plain), unitsOf(*plain));
    }
    const TextUniquePtr twice = styled(letters);
    twice->AppendText(*twice);
    EXPECT_EQ(stylesOf(*twice), letters + letters);
    twice->SetText(*twice, 2, 3);
    EXPECT_EQ(stylesOf(*twice), letters.substr(2, 3));
}

TEST(WrapperTextStylesTest, StayWithLettersThatChange) {
    const TextUniquePtr text = hostText(u"aßb");
    text->SetStyle(*face(CharacterStyle::kFace_Bold), 1, 1);
    text->SetStyle(*face(CharacterStyle::kFace_Italic), 2, 1);
    text->Uppercase();
    EXPECT_EQ(unitsOf(*text), u"ASSB");
    EXPECT_EQ(stylesOf(*text), u"-bbi");
    text->Lowercase();
    EXPECT_EQ(unitsOf(*text), u"assb");
    EXPECT_EQ(stylesOf(*text), u"-bbi");
}

TEST(WrapperTextStylesTest, GoWhenTheTextIsReplaced) {
    const TextUniquePtr text = styled(u"bbb");
    text->Assign("new");
    EXPECT_EQ(stylesOf(*text), u"---");
}

} // namespace

#include "tests/host/wrapper/support.h"

#include <array>

namespace {

using fmx::Text;
using fmx::uint16;

const uint16* units(const char16_t* text) {
    return reinterpret_cast<const uint16*>(text);
}

TEST(WrapperTextTest, IsEmptyAtFirst) {
    const fmx::TextUniquePtr text;
    EXPECT_EQ(text->GetSize(), 0U);
    EXPECT_EQ(unitsOf(*text), u"");
}

TEST(WrapperTextTest, IsAssignedFromEveryKindOfCharacter) {
    const fmx::TextUniquePtr text;
    text->Assign("a\xC3\xA4", Text::kEncoding_UTF8);
    EXPECT_EQ(unitsOf(*text), u"a\u00E4");
    text->Assign("\xFF!");
    EXPECT_EQ(unitsOf(*text), u"\uFFFD!");
    text->AssignWide(L"a\u00E4\U0001F600");
    EXPECT_EQ(unitsOf(*text), u"a\u00E4\U0001F600");
    text->AssignUnicode(units(u"a\u00E4\U0001F600"));
    EXPECT_EQ(unitsOf(*text), u"a\u00E4\U0001F600");
    text->AssignWithLength("a\xC3\xA4z", 3, Text::kEncoding_UTF8);
    EXPECT_EQ(unitsOf(*text), u"a\u00E4");
    text->AssignWideWithLength(L"abc", 2);
    EXPECT_EQ(unitsOf(*text), u"ab");
    const wchar_t beyond = static_cast<wchar_t>(0x110000);
    text->AssignWideWithLength(&beyond, 1);
    EXPECT_EQ(unitsOf(*text), u"\uFFFD");
    text->AssignUnicodeWithLength(units(u"abc"), 2);
    EXPECT_EQ(unitsOf(*text), u"ab");
    text->AssignUnicodeWithLength(nullptr, 0);
    EXPECT_EQ(text->GetSize(), 0U);
    EXPECT_THROW(text->Assign("a", 99), std::exception);
    EXPECT_THROW(text->Assign(nullptr), std::exception);
    EXPECT_THROW(text->AssignWide(nullptr), std::exception);
    EXPECT_THROW(text->AssignUnicode(nullptr), std::exception);
    EXPECT_THROW(text->AssignUnicodeWithLength(nullptr, 1), std::exception);
}

TEST(WrapperTextTest, KeepsZerosAndLoneSurrogates) {
    const std::u16string odd = {u'a', 0, 0xD800, u'b', 0xDC00, 0xFFFF};
    EXPECT_EQ(unitsOf(*hostText(odd)), odd);
}

TEST(WrapperTextTest, GivesRanges) {
    const auto text = hostText(u"abc");
    std::array<uint16, 4> buffer{9, 9, 9, 9};
    text->GetUnicode(buffer.data(), 1, 2);
    EXPECT_EQ(buffer, (std::array<uint16, 4>{u'b', u'c', 9, 9})); // nothing after the range
    text->GetUnicode(buffer.data(), 2, Text::kSize_End);
    EXPECT_EQ(buffer[0], u'c');
    text->GetUnicode(nullptr, 99, 5);
    EXPECT_THROW(text->GetUnicode(nullptr, 0, 1), std::exception);
}

TEST(WrapperTextTest, GivesBytesInWholeCharacters) {
    const auto text = hostText(u"a\u20ACb");
    std::string buffer(8, '#');
    const auto bytes = [&](fmx::uint32 capacity, fmx::uint32 position = 0,
                           fmx::uint32 size = Text::kSize_End) {
        buffer.assign(8, '#');
        text->GetBytes(buffer.data(), capacity, position, size, Text::kEncoding_UTF8);
        return buffer.substr(0, buffer.find('\0'));
    };
    EXPECT_EQ(bytes(8), "a\xE2\x82\xAC"
                        "b");
    EXPECT_EQ(bytes(6), "a\xE2\x82\xAC"
                        "b");
    EXPECT_EQ(bytes(5), "a\xE2\x82\xAC");
    EXPECT_EQ(bytes(4), "a");
    EXPECT_EQ(bytes(1), "");
    EXPECT_EQ(bytes(0), "########");
    EXPECT_EQ(bytes(8, 2), "b");
    EXPECT_EQ(bytes(8, 0, 1), "a");
    EXPECT_EQ(bytes(8, 99), "");
    EXPECT_THROW(text->GetBytes(buffer.data(), 8, 0, 1, 99), std::exception);
    EXPECT_THROW(text->GetBytes(nullptr, 8), std::exception);
}

TEST(WrapperTextTest, IsEdited) {
    const auto text = hostText(u"abc");
    text->SetText(*hostText(u"0123"), 1, 2);
    EXPECT_EQ(unitsOf(*text), u"12");
    text->SetText(*text, 1);
    EXPECT_EQ(unitsOf(*text), u"2");
    text->AppendText(*hostText(u"xyz"), 1);
    EXPECT_EQ(unitsOf(*text), u"2yz");
    text->AppendText(*text);
    EXPECT_EQ(unitsOf(*text), u"2yz2yz");
    text->InsertText(*hostText(u"--"), 3);
    EXPECT_EQ(unitsOf(*text), u"2yz--2yz");
    text->InsertText(*text, 0);
    EXPECT_EQ(text->GetSize(), 16U);
    text->InsertText(*hostText(u"!"), 99);
    EXPECT_EQ(unitsOf(*text).back(), u'!');
    text->DeleteText(2, 13);
    EXPECT_EQ(unitsOf(*text), u"2yz!");
    text->DeleteText(1);
    EXPECT_EQ(unitsOf(*text), u"2");
    text->DeleteText(99, 5);
    EXPECT_EQ(unitsOf(*text), u"2");
}

TEST(WrapperTextTest, IsSearched) {
    const auto text = hostText(u"xAbxaB\u00C4");
    EXPECT_EQ(text->Find(*hostText(u"x"), 0), 0U);
    EXPECT_EQ(text->Find(*hostText(u"x"), 1), 3U);
    EXPECT_EQ(text->Find(*hostText(u"ab"), 0), Text::kSize_Invalid);
    EXPECT_EQ(text->Find(*hostText(u"x"), 99), Text::kSize_Invalid);
    EXPECT_EQ(text->FindPrev(*hostText(u"x"), Text::kSize_End), 3U);
    EXPECT_EQ(text->FindPrev(*hostText(u"x"), 2), 0U);
    EXPECT_EQ(text->FindPrev(*hostText(u"q"), 2), Text::kSize_Invalid);
    EXPECT_EQ(text->FindIgnoringCase(*hostText(u"ab"), 0), 1U);
    EXPECT_EQ(text->FindIgnoringCase(*hostText(u"ab"), 2), 4U);
    EXPECT_EQ(text->FindIgnoringCase(*hostText(u"\u00E4"), 0), 6U);
    EXPECT_EQ(text->FindPrevIgnoringCase(*hostText(u"AB"), Text::kSize_End), 4U);
    EXPECT_EQ(text->FindPrevIgnoringCase(*hostText(u"AB"), 3), 1U);
    EXPECT_EQ(text->FindPrevIgnoringCase(*hostText(u"q"), 3), Text::kSize_Invalid);
}

TEST(WrapperTextTest, ChangesCase) {
    const auto text = hostText(u"Stra\u00DFe");
    text->Uppercase();
    EXPECT_EQ(unitsOf(*text), u"STRASSE");
    text->Lowercase();
    EXPECT_EQ(unitsOf(*text), u"strasse");
}

TEST(WrapperTextTest, ComparesByUnits) {
    const auto small = hostText(u"A");
    const auto large = hostText(u"a");
    EXPECT_TRUE(*small < *large);
    EXPECT_TRUE(*small <= *large);
    EXPECT_TRUE(*large > *small);
    EXPECT_TRUE(*large >= *small);
    EXPECT_TRUE(*small != *large);
    EXPECT_FALSE(*small == *large);
    EXPECT_TRUE(*small == *hostText(u"A"));
    EXPECT_FALSE(*small < *hostText(u"A"));
    EXPECT_TRUE(*hostText(u"\U0001F600") < *hostText(u"\uFFFD"));
}

TEST(WrapperLocaleTest, IsCopiedAndAssigned) {
    const fmx::LocaleUniquePtr system(fmx::Locale::kType_System);
    const fmx::LocaleUniquePtr copy(*system);
    const fmx::LocaleUniquePtr other(fmx::Locale::kType_UnicodeRaw);
    EXPECT_EQ(&(*other = *copy), other.get());
}

} // namespace

// Text in the encodings of the interface. The bytes are those of the encodings' own code tables.
#include "tests/host/wrapper/support.h"

#include <set>

namespace {

using fmx::int32;
using fmx::Text;
using fmx::TextUniquePtr;

std::u16string decoded(const std::string& bytes, int32 encoding) {
    const TextUniquePtr text;
    text->AssignWithLength(bytes.data(), static_cast<fmx::uint32>(bytes.size()), encoding);
    return unitsOf(*text);
}

std::string encoded(std::u16string_view characters, int32 encoding, size_t capacity = 256) {
    const TextUniquePtr text = hostText(characters);
    std::string buffer(capacity + 1, '#');
    const fmx::uint32 size =
        text->GetBytesEx(buffer.data(), static_cast<fmx::uint32>(capacity), 0, Text::kSize_End, encoding);
    EXPECT_EQ(buffer[size], '\0');
    EXPECT_EQ(buffer[capacity], '#');
    return buffer.substr(0, size);
}

struct Sample {
    int32 encoding;
    std::string bytes;
    std::u16string characters;
};

const Sample kSamples[] = {
    {Text::kEncoding_Native, "\xC3\xA9\xE6\xBC\xA2\xF0\x9F\x98\x80", u"é漢😀"},
    {Text::kEncoding_UTF8, "\xC3\xA9\xE6\xBC\xA2\xF0\x9F\x98\x80", u"é漢😀"},
    {Text::kEncoding_ASCII_DOS, "\x82\x80\xB0", u"éÇ░"},
    {Text::kEncoding_ASCII_Windows, "\x80\x93\xE9", u"€“é"},
    {Text::kEncoding_ASCII_Mac, "\xDB\xBD", u"€Ω"},
    {Text::kEncoding_ISO_8859_1, "\xE9\xFF", u"éÿ"},
    {Text::kEncoding_ShiftJIS_Mac, "\x82\xA0\x8A\xBF\xB1", u"あ漢ｱ"},
    {Text::kEncoding_ShiftJIS_Win, "\x82\xA0\x8A\xBF\xB1\x87\x40", u"あ漢ｱ①"},
    {Text::kEncoding_Korean_Mac, "\xC7\xD1\xB1\xDB\xF9\xD3", u"한글漢"},
    {Text::kEncoding_Korean_Win, "\xC7\xD1\x8C\x63\xA2\xE6", u"한똠€"},
    {Text::kEncoding_Korean_Johab, "\xD0\x65\x99\xB1\x88\x41\x84\x61\xF7\xD3\xD9\xE6\xD9\x32",
     u"한똠ㄱㅏ漢€、"},
    {Text::kEncoding_ChineseTrad_Mac, "\xA4\xA4\xA4\xE5", u"中文"},
    {Text::kEncoding_ChineseTrad_Win, "\xA4\xA4\xA4\xE5\xF9\xD6", u"中文碁"},
    {Text::kEncoding_ChineseSimp_Mac, "\xD6\xD0\xCE\xC4", u"中文"},
    {Text::kEncoding_ChineseSimp_Win, "\xD6\xD0\xE9\x46\x80", u"中镕€"},
    {Text::kEncoding_Cyrillic_Mac, "\x86\xDF\xFF", u"Жя€"},
    {Text::kEncoding_Cyrillic_Win, "\xC6\xFF\x88", u"Жя€"},
    {Text::kEncoding_ISO_8859_5, "\xB6\xEF\xF0", u"Жя№"},
    {Text::kEncoding_CentralEurope_Mac, "\xFC\xFD\x89", u"ŁżČ"},
    {Text::kEncoding_EasternEurope_Win, "\xA3\xBF\x80", u"Łż€"},
    {Text::kEncoding_ISO_8859_2, "\xA3\xBF", u"Łż"},
    {Text::kEncoding_Turkish_Mac, "\xDA\xDC\xDE", u"ĞİŞ"},
    {Text::kEncoding_Turkish_Win, "\xD0\xDD\x80", u"Ğİ€"},
    {Text::kEncoding_ISO_8859_3, "\xA1\xF8", u"Ħĝ"},
    {Text::kEncoding_ISO_8859_9, "\xD0\xDD\xFE", u"Ğİş"},
    {Text::kEncoding_Baltic_Win, "\xD0\xE2\xF8", u"Šāų"},
    {Text::kEncoding_ISO_8859_4, "\xA1\xF1", u"Ąņ"},
    {Text::kEncoding_Arabic_Mac, "\xD3\xE4\xC7\xE5", u"سلام"},
    {Text::kEncoding_Arabic_Win, "\xD3\x81\x80", u"سپ€"},
    {Text::kEncoding_ISO_8859_6, "\xD3\xE4\xC7\xE5", u"سلام"},
    {Text::kEncoding_Greek_Mac, "\xBF\xC0\xF7\x9C", u"Ωάς€"},
    {Text::kEncoding_Greek_Win, "\xD9\xDC\x80", u"Ωά€"},
    {Text::kEncoding_ISO_8859_7, "\xD9\xDC\xA4", u"Ωά€"},
    {Text::kEncoding_Hebrew_Mac, "\xF9\xEC\xE5\xED", u"שלום"},
    {Text::kEncoding_Hebrew_Win, "\xF9\xEC\xE5\xED\xA4", u"שלום₪"},
    {Text::kEncoding_ISO_8859_8, "\xF9\xEC\xE5\xED", u"שלום"},
    {Text::kEncoding_ISO_8859_15, "\xA4\xA6\xBD\xBE", u"€ŠœŸ"},
};

// All bytes below 0x80 are one character each in all encodings, as ASCII has them.
std::string ascii() {
    std::string bytes;
    for (char c = 1; c < 0x7F; ++c) {
        bytes += c;
    }
    return bytes + '\x7F';
}

TEST(WrapperEncodingsTest, EachReadsAndWritesItsOwnBytes) {
    std::set<int32> seen;
    for (const auto& [encoding, bytes, characters] : kSamples) {
        SCOPED_TRACE(encoding);
        EXPECT_EQ(decoded(bytes, encoding), characters);
        EXPECT_EQ(encoded(characters, encoding), bytes);
        seen.insert(encoding);
    }
    EXPECT_EQ(seen.size(), size_t{Text::kEncoding_ISO_8859_15} + 1);
}

TEST(WrapperEncodingsTest, EachHasAscii) {
    const std::string bytes = ascii();
    const std::u16string characters(bytes.begin(), bytes.end());
    for (int32 encoding = 0; encoding <= Text::kEncoding_ISO_8859_15; ++encoding) {
        SCOPED_TRACE(encoding);
        EXPECT_EQ(decoded(bytes, encoding), characters);
        EXPECT_EQ(encoded(characters, encoding), bytes);
    }
}

TEST(WrapperEncodingsTest, ReplaceWhatTheyLack) {
    for (int32 encoding = Text::kEncoding_ASCII_DOS; encoding <= Text::kEncoding_ISO_8859_15; ++encoding) {
        SCOPED_TRACE(encoding);
        EXPECT_EQ(encoded(u"a\U0001F600b", encoding), "a?b");
        EXPECT_EQ(encoded(std::u16string{u'a', 0xD83D, u'b'}, encoding), "a?b"); // half a pair
    }
}

// Any two bytes, with one cut off at the end: an answer, and nothing of it is a character that stands for
// none.
TEST(WrapperEncodingsTest, ReadAnyBytes) {
    for (int32 encoding = 0; encoding <= Text::kEncoding_ISO_8859_15; ++encoding) {
        SCOPED_TRACE(encoding);
        for (int first = 0x80; first < 0x100; ++first) {
            std::string bytes;
            for (int second = 0; second < 0x100; ++second) {
                bytes += {static_cast<char>(first), static_cast<char>(second)};
            }
            bytes += static_cast<char>(first);
            const std::u16string text = decoded(bytes, encoding);
            EXPECT_GE(text.size(), 128U);
            EXPECT_LE(text.size(), bytes.size());
            EXPECT_EQ(text.find(u'\uFFFF'), std::u16string::npos);
        }
    }
    EXPECT_EQ(decoded("a\xFF", Text::kEncoding_ShiftJIS_Win), u"a\uFFFD");
    EXPECT_EQ(decoded("a\x82", Text::kEncoding_ShiftJIS_Win), u"a\uFFFD");
}

TEST(WrapperEncodingsTest, WriteWholeCharactersOnly) {
    for (const auto& [encoding, bytes, characters] : kSamples) {
        for (size_t capacity = 1; capacity <= bytes.size(); ++capacity) {
            SCOPED_TRACE(testing::Message() << encoding << " in " << capacity);
            const std::string fitting = encoded(characters, encoding, capacity);
            EXPECT_LT(fitting.size(), capacity);
            EXPECT_EQ(fitting, bytes.substr(0, fitting.size()));
            EXPECT_TRUE(characters.starts_with(decoded(fitting, encoding)));
        }
    }
}

TEST(WrapperEncodingsTest, RefuseOtherNumbers) {
    for (const int32 encoding : {-1, Text::kEncoding_ISO_8859_15 + 1, 0x7FFFFFFF}) {
        EXPECT_THROW(decoded("a", encoding), std::exception);
        EXPECT_THROW(encoded(u"a", encoding), std::exception);
    }
}

} // namespace

#include "tests/host/wrapper/support.h"

namespace {

constexpr fmx::int32 kJohab = fmx::Text::kEncoding_Korean_Johab;

std::u16string decoded(std::string_view bytes) {
    const fmx::TextUniquePtr text;
    text->AssignWithLength(bytes.data(), static_cast<fmx::uint32>(bytes.size()), kJohab);
    return unitsOf(*text);
}

std::string encoded(std::u16string_view text) {
    std::string buffer(100, '#');
    const fmx::uint32 size = hostText(text)->GetBytesEx(buffer.data(), 100, 0, fmx::Text::kSize_End, kJohab);
    return buffer.substr(0, size);
}

// Johab puts syllables together; values from its definition.
TEST(WrapperJohab, PutsSyllablesTogether) {
    EXPECT_EQ(encoded(u"한ㄱㅏㄳ中。"), "\xD0\x65\x88\x41\x84\x61\x84\x44\xF3\xE9\xD9\x33");
    EXPECT_EQ(decoded("\xD0\x65\x88\x41\x84\x61\x84\x44\xF3\xE9\xD9\x33"), u"한ㄱㅏㄳ中。");
    EXPECT_EQ(encoded(u"갑값힣똠뷁"), "\x88\x73\x88\x74\xD3\xBD\x99\xB1\xA6\xCA");
    for (char16_t c = 0xAC00; c < 0xAC00 + 11172; ++c) {
        const std::string bytes = encoded({&c, 1});
        ASSERT_EQ(bytes.size(), 2U) << int{c};
        ASSERT_EQ(decoded(bytes), std::u16string_view(&c, 1)) << int{c};
    }
    EXPECT_EQ(decoded("\xD0"), u"\uFFFD");
    EXPECT_EQ(decoded("\xD0 a"), u"\uFFFD a");
    EXPECT_EQ(decoded("\xD8\x31"), u"\uFFFD");
    EXPECT_EQ(decoded("\xFF\xFF"), u"\uFFFD");
    EXPECT_EQ(decoded("\xD9\x80"), u"\uFFFD") << "between the second bytes of low and high places";
}

// The tables of Korean text that it shares have places of users' own, which Johab has not.
TEST(WrapperJohab, HasNoPlacesOfUsers) {
    EXPECT_EQ(encoded(u"\uE000a\uE05D\uE05E\uE0BB"), "?a???");
    EXPECT_EQ(encoded(std::u16string{u'a', 0xD83D}), "a?") << "half a pair at the end";
    EXPECT_EQ(encoded(std::u16string{0xD83D, u'a'}), "?a") << "half a pair before a letter";
}

} // namespace

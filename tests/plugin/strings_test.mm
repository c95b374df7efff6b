#include "plugin/shell/strings.h"

#include "plugin/shell/function_table.h"
#include "tests/plugin/support.h"
#include <array>
#include <fstream>
#include <regex>
#include <sstream>

namespace {

// Strings of the plug-in, from a table of the test's own.
class StringsTest : public testing::Test {
  protected:
    StringsTest()
        : bundle_("\"KORUFMPlugin 1\" = \"TEST1nnYYnn\";\n"
                  "\"KORUFMPlugin 7\" = \"sevens!\";\n"
                  "\"KORUFMPlugin 8\" = \"\";\n"
                  "\"KORUFMPlugin 9\" = \"KORUFMPlugin 9\";\n"
                  "\"KORUFMPlugin 10\" = \"Gr\\U00fc\\U00dfe \\Ud83d\\Ude00\";\n"
                  "\"KORUFMPlugin 11\" = \"Name ( a ; b ( c ) )\";\n"
                  "\"KORUFMPlugin 12\" = \"NoParenthesis\";\n"
                  "\"KORUFMPlugin 13\" = \"" +
                  std::string(1022, 'x') +
                  "\";\n"
                  "\"KORUFMPlugin 14\" = \"" +
                  std::string(1023, 'x') +
                  "\";\n"
                  "\"KORUFMPlugin 128\" = \"The name\";\n") {
        message_.instanceID = bundle_.instance();
        gFMX_ExternCallPtr = &message_;
        buffer_.fill(kUntouched);
    }
    ~StringsTest() override { gFMX_ExternCallPtr = nullptr; }

    static constexpr unsigned short kUntouched = 0xAAAA;

    // What the buffer holds, up to its 0.
    std::u16string stored() const { return {reinterpret_cast<const char16_t*>(buffer_.data())}; }

    static std::string textOf(unsigned long id, bool cut) {
        OwnedText text;
        text->Assign("what was there before");
        Do_GetString(id, text, cut);
        NSString* string = stringFromText(*text);
        return string == nil ? "" : utf8(string);
    }

    Pool pool_;
    Bundle bundle_;
    FMX_ExternCallStruct message_ = messageOf(kFMXT_GetString);
    std::array<unsigned short, 64> buffer_;
};

TEST_F(StringsTest, AStringNeedsRoomForItselfAndTwoMore) {
    EXPECT_EQ(Sub_OSXLoadString(7, buffer_.data(), 9), 7);
    EXPECT_EQ(stored(), u"sevens!");
    EXPECT_EQ(buffer_[8], kUntouched);
}

TEST_F(StringsTest, AStringThatJustFitsIsNotDelivered) {
    EXPECT_EQ(Sub_OSXLoadString(7, buffer_.data(), 8), 0);
    EXPECT_EQ(buffer_[0], kUntouched);
}

TEST_F(StringsTest, NoBufferOrNoRoomIsLeftAlone) {
    EXPECT_EQ(Sub_OSXLoadString(7, nullptr, 64), 0);
    for (const long capacity : {1L, 0L, -5L}) {
        EXPECT_EQ(Sub_OSXLoadString(8, buffer_.data(), capacity), 0);
        EXPECT_EQ(buffer_[0], kUntouched);
    }
}

TEST_F(StringsTest, AnEmptyStringIsStored) {
    EXPECT_EQ(Sub_OSXLoadString(8, buffer_.data(), 2), 0);
    EXPECT_EQ(buffer_[0], 0);
}

TEST_F(StringsTest, AMissingStringIsNotItsKey) {
    EXPECT_EQ(Sub_OSXLoadString(99, buffer_.data(), 64), 0);
    EXPECT_EQ(buffer_[0], kUntouched);
    EXPECT_EQ(Sub_OSXLoadString(9, buffer_.data(), 64), 14);
    EXPECT_EQ(stored(), u"KORUFMPlugin 9");
}

TEST_F(StringsTest, StringsAreUtf16) {
    EXPECT_EQ(Sub_OSXLoadString(10, buffer_.data(), 64), 8);
    EXPECT_EQ(stored(), u"Gr\u00fc\u00dfe \U0001F600");
}

TEST_F(StringsTest, TheNameIsThePrototypeUpToItsFirstParenthesis) {
    EXPECT_EQ(textOf(11, false), "Name ( a ; b ( c ) )");
    EXPECT_EQ(textOf(11, true), "Name ");
    EXPECT_EQ(textOf(12, true), "NoParenthesis");
}

TEST_F(StringsTest, ATextIsEmptyWhenTheStringIsMissingOrTooLong) {
    EXPECT_EQ(textOf(99, false), "");
    EXPECT_EQ(textOf(99, true), "");
    EXPECT_EQ(textOf(13, false), std::string(1022, 'x'));
    EXPECT_EQ(textOf(14, false), "");
}

TEST_F(StringsTest, TheOptionsKindIsStringOne) {
    EXPECT_EQ(textOf(131, false), "TEST1nnYYnn");
    Do_GetString(131UL, 0, 64, buffer_.data());
    EXPECT_EQ(stored(), u"TEST1nnYYnn");
}

TEST_F(StringsTest, OtherKindsAreTheStringsOfTheirNumberInAnyLanguage) {
    Do_GetString(128UL, 4711, 64, buffer_.data());
    EXPECT_EQ(stored(), u"The name");
    buffer_.fill(kUntouched);
    Do_GetString(129UL, 0, 64, buffer_.data());
    EXPECT_EQ(buffer_[0], kUntouched);
}

TEST_F(StringsTest, TheHostsMessageIsAnsweredInItsBuffer) {
    message_.parm1 = kFMXT_NameStr;
    message_.parm3 = 64;
    message_.result = reinterpret_cast<fmx::ptrtype>(buffer_.data());
    FMExternCallProc(&message_);
    EXPECT_EQ(stored(), u"The name");
    EXPECT_EQ(resultOf(message_), reinterpret_cast<fmx::ptrtype>(buffer_.data()));
}

TEST_F(StringsTest, WithoutABundleThereAreNoStrings) {
    message_.instanceID = 0; // this program's folder has no resources
    EXPECT_EQ(Sub_OSXLoadString(7, buffer_.data(), 64), 0);
    EXPECT_EQ(buffer_[0], kUntouched);
}

// --- The plug-in's own table.

std::string ownTable() {
    std::ostringstream table;
    table << std::ifstream(STRING_TABLE).rdbuf();
    return table.str();
}

class StringTableTest : public testing::Test {
  protected:
    StringTableTest() : bundle_(ownTable()) {
        message_.instanceID = bundle_.instance();
        gFMX_ExternCallPtr = &message_;
    }
    ~StringTableTest() override { gFMX_ExternCallPtr = nullptr; }

    static std::string load(unsigned long id) {
        std::array<unsigned short, 1024> buffer{};
        const long length = Sub_OSXLoadString(id, buffer.data(), buffer.size());
        return utf8([NSString stringWithCharacters:buffer.data() length:static_cast<NSUInteger>(length)]);
    }

    Pool pool_;
    Bundle bundle_;
    FMX_ExternCallStruct message_ = messageOf(kFMXT_Init);
};

int countOf(const std::string& text, char wanted) {
    return static_cast<int>(std::count(text.begin(), text.end(), wanted));
}

// How many arguments a prototype's parentheses name; those in braces may be left out.
std::pair<int, int> arityOf(const std::string& prototype) {
    const auto open = prototype.find('(');
    if (open == std::string::npos) {
        return {0, 0};
    }
    const std::string all = prototype.substr(open);
    const std::string required = std::regex_replace(all, std::regex(R"(\{[^}]*\})"), "");
    const auto arguments = [](const std::string& list) {
        return std::regex_search(list, std::regex("[A-Za-z]")) ? countOf(list, ';') + 1 : 0;
    };
    return {arguments(required), arguments(all)};
}

TEST_F(StringTableTest, EveryFunctionHasAPrototypeThatFitsItsRange) {
    for (const ExternalFunction& function : externalFunctions()) {
        const std::string prototype = load(stringIdOf(function.id));
        EXPECT_TRUE(std::regex_match(prototype, std::regex(R"(KORU_[A-Za-z]+(\( .* \))?)"))) << prototype;
        EXPECT_EQ(arityOf(prototype), std::pair(int{function.minArguments}, int{function.maxArguments}))
            << prototype;
    }
}

TEST_F(StringTableTest, NoStringIsLeftOver) {
    const std::string table = ownTable();
    const std::regex entry(R"re("KORUFMPlugin (\d+)" =)re");
    int prototypes = 0;
    for (std::sregex_iterator i(table.begin(), table.end(), entry); i != std::sregex_iterator(); ++i) {
        prototypes += std::stoi((*i)[1]) >= 204 ? 1 : 0;
    }
    EXPECT_EQ(prototypes, static_cast<int>(externalFunctions().size()));
}

TEST_F(StringTableTest, TheHostLearnsNameHelpAndOptions) {
    EXPECT_EQ(load(128), "Velocard");
    EXPECT_GT(load(129).size(), 20U);
    EXPECT_EQ(load(1), "KORU1nnYYnn");
}

} // namespace

// Formatting keeps what a calculation means, and formatting twice changes nothing: for all calculations of
// the tests and the documents, as they are and with blanks, line ends and comments strewn between their
// words.
#include "host/calc/lexer.h"
#include "host/check/calc_file.h"
#include "host/editor/format.h"
#include "host/values/text.h"
#include "tests/support/files.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <random>

namespace host {
namespace {

namespace fs = std::filesystem;

// The words of a text as pairs of kind and spelling; letter case does not count in names.
std::vector<std::pair<TokenKind, std::u16string>> words(const std::u16string& text) {
    std::vector<std::pair<TokenKind, std::u16string>> result;
    Lexer lexer(std::make_shared<Source>("", text), 0);
    for (Token token = lexer.next(); token.kind != TokenKind::end; token = lexer.next()) {
        const std::u16string spelling = text.substr(token.begin, token.end - token.begin);
        result.emplace_back(token.kind, token.kind == TokenKind::text        ? token.text
                                        : token.kind == TokenKind::semicolon ? u";" // may have been a comma
                                                                             : foldCase(spelling));
    }
    return result;
}

// The comments that strewn() puts in, in their order.
std::string comments(const std::u16string& text) {
    std::string result;
    const std::string utf8 = toUtf8(text);
    for (size_t at = 0; (at = utf8.find("<#", at)) != std::string::npos; ++at) {
        result += utf8.substr(at, utf8.find('>', at) - at + 1);
    }
    return result;
}

std::u16string strewn(const std::u16string& text, std::mt19937& random) {
    std::u16string result;
    Lexer lexer(std::make_shared<Source>("", text), 0);
    size_t end = 0;
    int number = 0;
    for (Token token = lexer.next(); token.kind != TokenKind::end; token = lexer.next()) {
        const std::string name = "<#" + std::to_string(++number) + ">";
        switch (random() % 12) {
        case 0:
            result += u"\n";
            break;
        case 1:
            result += u" \t\n\n\n ";
            break;
        case 2:
            result += u" /* " + fromUtf8(name) + u"*/";
            break;
        case 3:
            result += u" // " + fromUtf8(name) + u" \n";
            break;
        case 4:
            result += u"\n  // " + fromUtf8(name) + u"\n";
            break;
        case 5:
            result += u" /*" + fromUtf8(name) + u"\n x*/ ";
            break;
        default:
            result += token.begin > end ? u"  " : u"";
        }
        result += text.substr(token.begin, token.end - token.begin);
        end = token.end;
    }
    return result;
}

std::vector<std::u16string> allCalculations() {
    std::vector<std::u16string> result;
    for (const char* folder : {"tests/language", "tests/calculations", "docs"}) {
        for (const auto& entry : fs::directory_iterator(fs::path(REPOSITORY) / folder)) {
            const bool isMarkdown = entry.path().extension() == ".md";
            if (!isMarkdown && entry.path().extension() != ".calc") {
                continue;
            }
            for (const CalcCheck& check : parseCalcTest(support::bytesOf(entry.path()), isMarkdown).checks) {
                if (check.kind != CheckKind::fails) {
                    result.push_back(fromUtf8(check.text));
                }
            }
        }
    }
    return result;
}

std::u16string withoutBlanks(std::u16string text) {
    std::erase_if(text, [](char16_t c) { return c == u' ' || c == u'\t' || c == u'\n'; });
    return text;
}

void expectKept(const std::u16string& text) {
    for (const size_t width : {0U, 10U, 40U, 120U}) {
        FormatStyle style;
        style.width = width;
        style.indent = kIndent;
        const auto format = [&style](const std::u16string& from) {
            return formatFile(std::make_shared<Source>("", from), FileKind::calculation, style);
        };
        const std::u16string once = format(text);
        ASSERT_EQ(words(once), words(text)) << toUtf8(text) << "\nbecame\n" << toUtf8(once);
        ASSERT_EQ(comments(once), comments(text)) << toUtf8(text) << "\nbecame\n" << toUtf8(once);
        ASSERT_EQ(toUtf8(format(once)), toUtf8(once)) << "width " << width << " of\n" << toUtf8(text);
    }
}

TEST(FormatPropertyTest, AllCalculationsKeepTheirMeaning) {
    const std::vector<std::u16string> all = allCalculations();
    ASSERT_GT(all.size(), 1400U);
    std::mt19937 random(7);
    for (const std::u16string& text : all) {
        ASSERT_NO_FATAL_FAILURE(expectKept(text));
        ASSERT_NO_FATAL_FAILURE(expectKept(strewn(text, random)));
    }
}

TEST(FormatPropertyTest, AllScriptsAreLaidOutOnce) {
    size_t count = 0;
    for (const auto& entry : fs::directory_iterator(fs::path(REPOSITORY) / "examples")) {
        if (entry.path().extension() != ".fmscript") {
            continue;
        }
        ++count;
        for (const size_t width : {0U, 30U, 120U}) {
            FormatStyle style;
            style.width = width;
            const auto format = [&style](const std::u16string& from) {
                return formatFile(std::make_shared<Source>("", from), FileKind::script, style);
            };
            const std::u16string text = fromUtf8(support::bytesOf(entry.path()));
            const std::u16string once = format(text);
            EXPECT_EQ(toUtf8(format(once)), toUtf8(once)) << entry.path();
            EXPECT_EQ(toUtf8(withoutBlanks(once)), toUtf8(withoutBlanks(text))) << entry.path();
        }
    }
    EXPECT_GT(count, 5U);
}

} // namespace
} // namespace host

#include "host/wrapper/johab.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

namespace host {

namespace {

constexpr char16_t kFirstSyllable = 0xAC00;
constexpr int kMedials = 21;
constexpr int kFinals = 28; // the first is none
constexpr int kSyllables = 19 * kMedials * kFinals;
constexpr char16_t kFirstConsonant = 0x3131;
constexpr char16_t kFirstVowel = 0x314F;
constexpr char16_t kUnreadable = 0xFFFD;

// The five bits for each letter, in Unicode's order, and those for a letter that is absent.
constexpr std::array<int, 19> kInitialBits = {2,  3,  4,  5,  6,  7,  8,  9,  10, 11,
                                              12, 13, 14, 15, 16, 17, 18, 19, 20};
constexpr std::array<int, kMedials> kMedialBits = {3,  4,  5,  6,  7,  10, 11, 12, 13, 14, 15,
                                                   18, 19, 20, 21, 22, 23, 26, 27, 28, 29};
constexpr std::array<int, kFinals> kFinalBits = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14,
                                                 15, 16, 17, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29};
constexpr int kNoInitial = 1;
constexpr int kNoMedial = 2;
constexpr int kNoFinal = 1;

// How the single letters from U+3131 on are written: as the initial with this number, or as the final with
// this number negated.
constexpr std::array<int, 30> kLoneConsonants = {0,   1,   -3,  2,   -5,  -6,  3,  4,  5,  -9,
                                                 -10, -11, -12, -13, -14, -15, 6,  7,  8,  -18,
                                                 9,   10,  11,  12,  13,  14,  15, 16, 17, 18};

uint16_t hangul(int initial, int medial, int final) {
    return static_cast<uint16_t>(0x8000 | initial << 10 | medial << 5 | final);
}

std::optional<uint16_t> hangulCode(char16_t c) {
    if (c >= kFirstSyllable && c < kFirstSyllable + kSyllables) {
        const int syllable = c - kFirstSyllable;
        return hangul(kInitialBits[static_cast<size_t>(syllable / (kMedials * kFinals))],
                      kMedialBits[static_cast<size_t>(syllable / kFinals % kMedials)],
                      kFinalBits[static_cast<size_t>(syllable % kFinals)]);
    }
    if (c >= kFirstVowel && c < kFirstVowel + kMedials) {
        return hangul(kNoInitial, kMedialBits[static_cast<size_t>(c - kFirstVowel)], kNoFinal);
    }
    if (c >= kFirstConsonant && c < kFirstConsonant + kLoneConsonants.size()) {
        const int letter = kLoneConsonants[static_cast<size_t>(c - kFirstConsonant)];
        return letter >= 0 ? hangul(kInitialBits[static_cast<size_t>(letter)], kNoMedial, kNoFinal)
                           : hangul(kNoInitial, kNoMedial, kFinalBits[static_cast<size_t>(-letter)]);
    }
    return std::nullopt;
}

// Returns the index of the letter with these bits; -1 when there is none.
template <size_t Size>
int letter(const std::array<int, Size>& letters, int bits) {
    const auto found = std::find(letters.begin(), letters.end(), bits);
    return found == letters.end() ? -1 : static_cast<int>(found - letters.begin());
}

char16_t hangulCharacter(int code) {
    const int initial = letter(kInitialBits, code >> 10 & 31);
    const int medial = letter(kMedialBits, code >> 5 & 31);
    const int final = letter(kFinalBits, code & 31);
    if (initial >= 0 && medial >= 0 && final >= 0) {
        return static_cast<char16_t>(kFirstSyllable + (initial * kMedials + medial) * kFinals + final);
    }
    // A single letter: the one that is written with this code.
    for (char16_t c = kFirstConsonant; c < kFirstVowel + kMedials; ++c) {
        if (hangulCode(c) == code) {
            return c;
        }
    }
    return kUnreadable;
}

// Each first byte covers two rows of 94 places of KS X 1001: the rows of symbols begin at 0xD9, those of
// Chinese characters at 0xE0.
constexpr int kPlaces = 94;
constexpr int kFirstRow = 0x21;
constexpr int kRowBehindSigns = 0x2D;
constexpr int kFirstChineseRow = 0x4A;
constexpr int kRowBehindChinese = 0x7E;
constexpr int kSigns = 0xD9;
constexpr int kChinese = 0xE0;
constexpr int kLowPlaces = 78; // places whose second bytes are from 0x31 on; those of the others from 0x91 on

char byteOf(int value) {
    return static_cast<char>(static_cast<unsigned char>(value));
}

// Returns the bytes of a symbol or a Chinese character in EUC-KR, none when there is no such place. [second] is 0x31 or more.
std::string eucBytes(int first, int second) {
    const int place = second <= 0x7E                     ? second - 0x31
                      : second >= 0x91 && second <= 0xFE ? second - 0x91 + kLowPlaces
                                                         : -1;
    const int row = first >= kChinese ? (first - kChinese) * 2 + kFirstChineseRow + place / kPlaces
                                      : (first - kSigns) * 2 + kFirstRow + place / kPlaces;
    const bool exists =
        first >= kChinese ? row < kRowBehindChinese : first >= kSigns && row < kRowBehindSigns;
    return place < 0 || !exists ? std::string()
                                : std::string{byteOf(row | 0x80), byteOf((place % kPlaces + 0x21) | 0x80)};
}

std::string johabBytes(int row, int column) {
    const bool isChinese = row >= kFirstChineseRow;
    if (row < kFirstRow || (row >= kRowBehindSigns && !isChinese) || row >= kRowBehindChinese) {
        return {};
    }
    const int fromBase = row - (isChinese ? kFirstChineseRow : kFirstRow);
    const int place = column - 0x21 + fromBase % 2 * kPlaces;
    return {byteOf((isChinese ? kChinese : kSigns) + fromBase / 2),
            byteOf(place < kLowPlaces ? 0x31 + place : 0x91 + place - kLowPlaces)};
}

char16_t decodedOther(const std::string& euc, UConverter& eucKr) {
    UErrorCode error = U_ZERO_ERROR;
    const char* from = euc.data();
    const UChar32 c = ucnv_getNextUChar(&eucKr, &from, from + euc.size(), &error);
    return U_FAILURE(error) ? kUnreadable : static_cast<char16_t>(c); // all of KS X 1001 is one unit each
}

std::string encodedOther(char16_t character, UConverter& eucKr) {
    UErrorCode error = U_ZERO_ERROR;
    std::array<char, 8> bytes{};
    const int32_t size =
        ucnv_fromUChars(&eucKr, bytes.data(), static_cast<int32_t>(bytes.size()), &character, 1, &error);
    return U_FAILURE(error) ? std::string() : std::string(bytes.data(), static_cast<size_t>(size));
}

} // namespace

char16_t takeJohab(std::string_view& bytes, UConverter& eucKr) {
    const int first = static_cast<unsigned char>(bytes[0]);
    bytes.remove_prefix(1);
    if (first < 0x80) {
        return static_cast<char16_t>(first);
    }
    if (bytes.empty() || static_cast<unsigned char>(bytes[0]) < 0x31) {
        return kUnreadable; // an incomplete character; the next byte begins another
    }
    const int second = static_cast<unsigned char>(bytes[0]);
    bytes.remove_prefix(1);
    if (first < 0xD8) {
        return hangulCharacter(first << 8 | second);
    }
    const std::string euc = eucBytes(first, second);
    return euc.empty() ? kUnreadable : decodedOther(euc, eucKr);
}

std::string johabBytes(char16_t character, UConverter& eucKr) {
    if (character < 0x80) {
        return {byteOf(character)};
    }
    if (const auto code = hangulCode(character)) {
        return {byteOf(*code >> 8), byteOf(*code & 0xFF)};
    }
    const std::string euc = encodedOther(character, eucKr);
    return euc.size() == 2 ? johabBytes(euc[0] & 0x7F, euc[1] & 0x7F) : std::string();
}

} // namespace host

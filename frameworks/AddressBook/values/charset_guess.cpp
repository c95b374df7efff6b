#include "frameworks/AddressBook/values/charset_guess.h"

#include <unicode/ucsdet.h>

#include <algorithm>
#include <array>
#include <memory>

namespace addressbook {

namespace {

constexpr std::string_view kUsual = "windows-1252";

// Of 100: what is less likely is a wild guess. In a short name the detector takes any two bytes for a character
// of a script with many, and any accent for one of another language of Latin letters.
constexpr int kLeastConfidence = 15, kLeastForWildGuesses = 30;
// Western text that is as likely as another language of Latin letters, but for this much, is Western.
constexpr int kNearlyAsLikely = 5;

struct CloseDetector {
    void operator()(UCharsetDetector* detector) const { ucsdet_close(detector); }
};

bool isUsual(std::string_view charset) {
    return charset == "ISO-8859-1" || charset == kUsual;
}

bool isLatin(std::string_view charset) {
    constexpr std::array<std::string_view, 4> kLatin{"ISO-8859-2", "ISO-8859-9", "windows-1250",
                                                     "windows-1254"};
    return std::find(kLatin.begin(), kLatin.end(), charset) != kLatin.end();
}

// Whether a text has one of the six letters in which the Turkish sets differ from the Western one.
bool hasTurkishLetter(std::string_view text) {
    return text.find_first_of("\xD0\xDD\xDE\xF0\xFD\xFE") != std::string_view::npos;
}

// Unicode is told without a guess, and no file of ASCII names is EBCDIC.
bool isRuledOut(std::string_view charset, std::string_view text) {
    const bool turkish = charset == "ISO-8859-9" || charset == "windows-1254";
    return charset.starts_with("UTF") || charset.starts_with("IBM42") || (turkish && !hasTurkishLetter(text));
}

bool hasManyBytes(std::string_view charset) {
    constexpr std::array<std::string_view, 5> kPrefixes{"Shift", "Big5", "GB", "EUC", "ISO-20"};
    return std::any_of(kPrefixes.begin(), kPrefixes.end(),
                       [&](std::string_view prefix) { return charset.starts_with(prefix); });
}

int leastConfidence(std::string_view charset) {
    return isLatin(charset) || hasManyBytes(charset) ? kLeastForWildGuesses : kLeastConfidence;
}

std::string withoutAsciiLines(std::string_view text) {
    std::string rest;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        const std::string_view line = text.substr(0, end);
        if (std::any_of(line.begin(), line.end(), [](char byte) { return byte < 0; })) {
            rest.append(line).push_back('\n');
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return rest;
}

} // namespace

std::string likelyCharset(std::string_view text) {
    const std::string sample = withoutAsciiLines(text);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UCharsetDetector, CloseDetector> detector(ucsdet_open(&status));
    if (U_FAILURE(status)) {
        return std::string(kUsual);
    }
    ucsdet_setText(detector.get(), sample.data(), static_cast<int32_t>(sample.size()), &status);
    int32_t count = 0;
    const UCharsetMatch** matches = ucsdet_detectAll(detector.get(), &count, &status);
    std::string_view best;
    int bestConfidence = 0;
    for (int32_t at = 0; at < count && U_SUCCESS(status); ++at) { // the likeliest first
        const std::string_view name = ucsdet_getName(matches[at], &status);
        const int confidence = ucsdet_getConfidence(matches[at], &status);
        if (U_FAILURE(status) || isRuledOut(name, sample) || confidence < leastConfidence(name)) {
            continue;
        }
        if (isUsual(name) &&
            (best.empty() || (isLatin(best) && confidence + kNearlyAsLikely >= bestConfidence))) {
            return std::string(kUsual);
        }
        if (best.empty()) {
            best = name;
            bestConfidence = confidence;
        }
    }
    return std::string(best.empty() ? kUsual : best);
}

} // namespace addressbook

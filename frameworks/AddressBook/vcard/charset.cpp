#include "frameworks/AddressBook/vcard/charset.h"

#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/text_source.h"
#include "frameworks/AddressBook/vcard/unfold.h"

#include <unicode/ucnv.h>
#include <unicode/ucsdet.h>

#include <array>
#include <memory>

namespace addressbook::vcard {

namespace {

constexpr std::size_t kEnough = 8000; // bytes: the detector looks at no more
constexpr std::string_view kUsual = "windows-1252";

// Below this the detector guesses wildly: it takes any two bytes for a character of a script with many.
constexpr int kLeastConfidence = 10, kLeastForManyBytes = 30;

struct CloseDetector {
    void operator()(UCharsetDetector* detector) const { ucsdet_close(detector); }
};

bool hasManyBytes(std::string_view charset) {
    constexpr std::array<std::string_view, 7> kPrefixes{"Shift", "Big5", "GB", "EUC", "UTF", "ISO-20", "IBM"};
    for (const std::string_view prefix : kPrefixes) {
        if (charset.starts_with(prefix)) {
            return true;
        }
    }
    return false;
}

} // namespace

bool isKnownCharset(const std::string& name) {
    UErrorCode status = U_ZERO_ERROR;
    UConverter* converter = ucnv_open(name.c_str(), &status);
    if (U_FAILURE(status)) {
        return false;
    }
    ucnv_close(converter);
    return true;
}

void CharsetSample::add(std::string_view line) {
    if (bytes_.size() >= kEnough || looksLikeUtf8(line)) {
        return;
    }
    const std::size_t colon = headerEnd(line);
    bytes_.append(line.substr(colon == std::string_view::npos ? 0 : colon + 1)).push_back('\n');
}

std::string CharsetSample::guess() const {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UCharsetDetector, CloseDetector> detector(ucsdet_open(&status));
    if (U_FAILURE(status)) {
        return std::string(kUsual);
    }
    ucsdet_setText(detector.get(), bytes_.data(), static_cast<int32_t>(bytes_.size()), &status);
    int32_t count = 0;
    const UCharsetMatch** matches = ucsdet_detectAll(detector.get(), &count, &status);
    for (int32_t at = 0; U_SUCCESS(status) && at < count; ++at) {
        const std::string_view name = ucsdet_getName(matches[at], &status);
        const int confidence = ucsdet_getConfidence(matches[at], &status);
        if (U_FAILURE(status) || confidence < kLeastConfidence) {
            break;
        }
        if (name.starts_with("UTF") || (hasManyBytes(name) && confidence < kLeastForManyBytes)) {
            continue;
        }
        return std::string(name == "ISO-8859-1" ? kUsual : name);
    }
    return std::string(kUsual);
}

std::string guessCharset(std::istream& input) {
    TextSource source(input);
    CharsetSample sample;
    TextLine line;
    while (source.next(line)) {
        // What names its character set needs no guess.
        if (!line.utf8 && !isAscii(line.text) &&
            upperCase(line.text.substr(0, headerEnd(line.text))).find("CHARSET=") == std::string::npos) {
            sample.add(line.text);
        }
    }
    return sample.empty() ? std::string() : sample.guess();
}

} // namespace addressbook::vcard

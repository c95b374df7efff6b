#include "frameworks/AddressBook/vcard/charset.h"

#include "frameworks/AddressBook/values/charset_guess.h"
#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/text_source.h"
#include "frameworks/AddressBook/vcard/unfold.h"

#include <unicode/ucnv.h>

namespace addressbook::vcard {

namespace {

constexpr std::size_t kEnough = 8000; // bytes: the detector looks at no more
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
    return likelyCharset(bytes_);
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

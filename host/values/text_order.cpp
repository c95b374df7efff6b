#include "host/values/text_order.h"

#include "host/values/formats.h"
#include "host/values/text.h"

#include <algorithm>
#include <memory>
#include <string>
#include <unicode/ucol.h>

namespace host {

namespace {

using Collator = std::unique_ptr<UCollator, decltype(&ucol_close)>;

// Returns the collator of the formats in use.
const UCollator* collator() {
    thread_local std::string locale;
    thread_local Collator open{nullptr, ucol_close};
    if (open == nullptr || locale != formats().locale) {
        UErrorCode status = U_ZERO_ERROR;
        locale = formats().locale;
        open.reset(ucol_open(locale.c_str(), &status));
        ucol_setStrength(open.get(), UCOL_SECONDARY); // letter case is of the third strength
    }
    return open.get();
}

// Whether the order of the folded units is that of the English language as well: blanks, digits, small letters.
bool isPlain(std::u16string_view folded) {
    return std::all_of(folded.begin(), folded.end(), [](char16_t c) {
        return c == u' ' || (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'z');
    });
}

} // namespace

std::strong_ordering compareTexts(std::u16string_view left, std::u16string_view right) {
    const std::u16string a = foldCase(left);
    const std::u16string b = foldCase(right);
    const std::strong_ordering units = compareUnits(a, b);
    const bool isEnglish = formats().locale == "en_US";
    if (units == 0 || (isEnglish && isPlain(a) && isPlain(b))) {
        return units;
    }
    const UCollationResult order = ucol_strcoll(collator(), a.data(), static_cast<int32_t>(a.size()),
                                                b.data(), static_cast<int32_t>(b.size()));
    return order == UCOL_EQUAL ? units : static_cast<int>(order) <=> 0;
}

} // namespace host

#include "host/calc/text_encoding.h"

#include "host/values/text.h"

#include <algorithm>
#include <memory>
#include <unicode/ucnv.h>

namespace host {

namespace {

struct Encoding {
    std::u16string_view name;
    const char* converter; // ICU's name
};
constexpr Encoding kEncodings[] = {
    {u"utf-8", "UTF-8"},
    {u"iso-8859-1", "ISO-8859-1"},
    {u"windows-1251", "windows-1251"},
    {u"windows-1252", "windows-1252"},
    {u"shift_jis", "Shift_JIS"},
    {u"gb18030", "gb18030"},
    {u"euc-kr", "EUC-KR"},
    {u"big5", "Big5"},
    {u"macintosh", "macintosh"},
};

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

Converter converterOf(std::u16string_view encoding) {
    const std::u16string wanted = foldCase(encoding);
    const auto* row = std::find_if(std::begin(kEncodings), std::end(kEncodings),
                                   [&](const Encoding& each) { return each.name == wanted; });
    UErrorCode status = U_ZERO_ERROR;
    return {row == std::end(kEncodings) ? nullptr : ucnv_open(row->converter, &status), ucnv_close};
}

} // namespace

std::optional<Bytes> encodedText(std::u16string_view text, std::u16string_view encoding) {
    const Converter converter = converterOf(encoding);
    if (converter == nullptr) {
        return std::nullopt;
    }
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setSubstString(converter.get(), u"?", 1, &status);
    Bytes bytes(text.size() * static_cast<size_t>(ucnv_getMaxCharSize(converter.get())) + 8);
    const int32_t size = ucnv_fromUChars(converter.get(), reinterpret_cast<char*>(bytes.data()),
                                         static_cast<int32_t>(bytes.size()), text.data(),
                                         static_cast<int32_t>(text.size()), &status);
    bytes.resize(U_SUCCESS(status) ? static_cast<size_t>(size) : 0);
    return U_SUCCESS(status) ? std::optional(std::move(bytes)) : std::nullopt;
}

std::optional<std::u16string> decodedText(std::span<const unsigned char> bytes,
                                          std::u16string_view encoding) {
    const Converter converter = converterOf(encoding);
    if (converter == nullptr) {
        return std::nullopt;
    }
    UErrorCode status = U_ZERO_ERROR;
    std::u16string text(bytes.size() * 2 + 8, u'\0');
    const int32_t size = ucnv_toUChars(converter.get(), text.data(), static_cast<int32_t>(text.size()),
                                       reinterpret_cast<const char*>(bytes.data()),
                                       static_cast<int32_t>(bytes.size()), &status);
    text.resize(U_SUCCESS(status) ? static_cast<size_t>(size) : 0);
    return U_SUCCESS(status) ? std::optional(std::move(text)) : std::nullopt;
}

} // namespace host

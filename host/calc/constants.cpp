#include "host/calc/constants.h"

#include "host/calc/external_function.h"

#include <string>
#include <unordered_map>

namespace host {

namespace {

constexpr Constant kConstants[] = {
    {u"JSONRaw", 0, "A type of JSON elements."},
    {u"JSONString", 1, "A type of JSON elements."},
    {u"JSONNumber", 2, "A type of JSON elements."},
    {u"JSONObject", 3, "A type of JSON elements."},
    {u"JSONArray", 4, "A type of JSON elements."},
    {u"JSONBoolean", 5, "A type of JSON elements."},
    {u"JSONNull", 6, "A type of JSON elements."},
    {u"Plain", 0, "A style of text."},
    {u"Strikethrough", 1, "A style of text."},
    {u"SmallCaps", 2, "A style of text."},
    {u"Superscript", 4, "A style of text."},
    {u"Subscript", 8, "A style of text."},
    {u"Uppercase", 16, "A style of text."},
    {u"Lowercase", 32, "A style of text."},
    {u"Titlecase", 48, "A style of text."},
    {u"WordUnderline", 64, "A style of text."},
    {u"DoubleUnderline", 128, "A style of text."},
    {u"Bold", 256, "A style of text."},
    {u"Italic", 512, "A style of text."},
    {u"Underline", 1024, "A style of text."},
    {u"Condense", 8192, "A style of text."},
    {u"Extend", 16384, "A style of text."},
    {u"AllStyles", 32767, "A style of text."},
    {u"HighlightYellow", 32768, "A style of text."},
    {u"Lower", 0, "Which record LookupNext takes."},
    {u"Higher", 1, "Which record LookupNext takes."},
    {u"PosixPath", 1, "A form of file paths."},
    {u"WinPath", 2, "A form of file paths."},
    {u"URLPath", 3, "A form of file paths."},
    {u"ValueNumber", 0, "What parameters may be."},
    {u"ValueNumberRanges", 3, "What parameters may be."},
    {u"JSONStringRanges", 4, "What parameters may be."},
    {u"Roman", 0, "A script of fonts."},
    {u"Greek", 1, "A script of fonts."},
    {u"Cyrillic", 2, "A script of fonts."},
    {u"CentralEurope", 3, "A script of fonts."},
    {u"ShiftJIS", 4, "A script of fonts."},
    {u"TraditionalChinese", 5, "A script of fonts."},
    {u"SimplifiedChinese", 6, "A script of fonts."},
    {u"OEM", 7, "A script of fonts."},
    {u"Symbol", 8, "A script of fonts."},
    {u"Other", 10, "A script of fonts."},
    {u"Korean", 11, "A script of fonts."},
    {u"Dingbats", 12, "A script of fonts."},
    {u"Turkish", 13, "A script of fonts."},
};

} // namespace

std::span<const Constant> constants() {
    return kConstants;
}

const Constant* findConstant(std::u16string_view key) {
    static const auto kByName = [] {
        std::unordered_map<std::u16string, const Constant*> names;
        for (const Constant& row : kConstants) {
            names.emplace(foldName(row.name), &row);
        }
        return names;
    }();
    const auto found = kByName.find(std::u16string(key));
    return found == kByName.end() ? nullptr : found->second;
}

} // namespace host

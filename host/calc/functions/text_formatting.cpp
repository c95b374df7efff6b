// Styles of text: adding and removing them, and writing them as CSS and SVG.
#include "host/calc/characters.h"
#include "host/calc/functions/groups.h"
#include "host/values/text.h"

#include <algorithm>
#include <cstdio>
#include <string>

namespace host {

namespace {

constexpr uint32_t kCaseFaces = 48; // Uppercase and Lowercase; both together are Titlecase

Value rgb(Session& /*session*/, Arguments in) {
    int64_t color = 0;
    for (const Value& channel : in) {
        color = color * 256 + std::clamp<int64_t>(integer(channel), 0, 255);
    }
    return areValid(in) ? integerValue(color) : Value::invalid();
}

// Returns the text with the style of each run changed by [change].
template <class Change>
Value changed(const Value& value, Change change) {
    if (!value.isValid()) {
        return value;
    }
    const std::u16string text = value.asText();
    StyledRuns runs = value.styles();
    if (runs.empty()) {
        runs.push_back({text.size(), {}});
    }
    for (StyledRun& run : runs) {
        change(run.style);
    }
    return Value::styledText(text, std::move(runs));
}

uint32_t colorArgument(const Value& value) {
    return static_cast<uint32_t>(std::clamp<int64_t>(integer(value), 0, 0xFFFFFF));
}
int32_t sizeArgument(const Value& value) {
    return static_cast<int32_t>(std::clamp<int64_t>(integer(value), 0, 10'000));
}
uint32_t faceArgument(const Value& value) {
    return static_cast<uint32_t>(std::clamp<int64_t>(integer(value), 0, 0xFFFF));
}

Value textColor(Session& /*session*/, Arguments in) {
    return changed(in[0], [&](TextStyle& style) { style.color = colorArgument(in[1]); });
}
Value textColorRemove(Session& /*session*/, Arguments in) {
    return changed(in[0], [&](TextStyle& style) {
        if (in.size() < 2 || style.color == colorArgument(in[1])) {
            style.color.reset();
        }
    });
}
Value textFont(Session& /*session*/, Arguments in) {
    return changed(in[0], [&](TextStyle& style) { style.font = in[1].asText(); });
}
Value textFontRemove(Session& /*session*/, Arguments in) {
    return changed(in[0], [&](TextStyle& style) {
        if (in.size() < 2 || foldCase(style.font) == foldCase(in[1].asText())) {
            style.font.clear();
        }
    });
}
Value textFormatRemove(Session& /*session*/, Arguments in) {
    return in[0].isValid() ? Value::text(in[0].asText()) : in[0];
}
Value textSize(Session& /*session*/, Arguments in) {
    return changed(in[0], [&](TextStyle& style) { style.size = sizeArgument(in[1]); });
}
Value textSizeRemove(Session& /*session*/, Arguments in) {
    return changed(in[0], [&](TextStyle& style) {
        if (in.size() < 2 || style.size == sizeArgument(in[1])) {
            style.size = 0;
        }
    });
}
// Plain alone removes all faces; a letter case replaces another one.
Value textStyleAdd(Session& /*session*/, Arguments in) {
    const uint32_t faces = faceArgument(in[1]);
    return changed(in[0], [faces](TextStyle& style) {
        const uint32_t kept = (faces & kCaseFaces) != 0 ? style.faces & ~kCaseFaces : style.faces;
        style.faces = faces == 0 ? 0 : kept | faces;
    });
}
Value textStyleRemove(Session& /*session*/, Arguments in) {
    const uint32_t faces = faceArgument(in[1]);
    return changed(in[0], [faces](TextStyle& style) { style.faces &= ~faces; });
}

struct FaceRow {
    uint32_t mask; // the bits that are tested
    uint32_t face;
    std::u16string_view css;
};
constexpr FaceRow kFaces[] = {
    {256, 256, u"font-weight: bold;"},
    {512, 512, u"font-style: italic;"},
    {1024 + 1, 1024, u"text-decoration: underline;"},
    {1024 + 1, 1, u"text-decoration: line-through;"},
    {1024 + 1, 1024 + 1, u"text-decoration: underline line-through;"},
    {2, 2, u"font-variant: small-caps;"},
    {4, 4, u"vertical-align: super;"},
    {8, 8, u"vertical-align: sub;"},
    {kCaseFaces, 16, u"text-transform: uppercase;"},
    {kCaseFaces, 32, u"text-transform: lowercase;"},
    {kCaseFaces, 48, u"text-transform: capitalize;"},
    {8192, 8192, u"font-stretch: condensed;"},
    {16384, 16384, u"font-stretch: expanded;"},
};

std::u16string css(const TextStyle& style) {
    std::u16string result;
    if (!style.font.empty()) {
        result += u"font-family: '" + style.font + u"';";
    }
    if (style.size > 0) {
        result += u"font-size: " + Number(style.size).toText() + u"px;";
    }
    if (style.color) {
        char digits[16];
        std::snprintf(digits, sizeof digits, "#%06X", static_cast<unsigned>(*style.color));
        result += u"color: " + fromUtf8(digits) + u";";
    }
    for (const FaceRow& row : kFaces) {
        result += (style.faces & row.mask) == row.face ? row.css : u"";
    }
    return result;
}

std::u16string escaped(std::u16string_view text) {
    std::u16string result;
    for (const char16_t c : text) {
        switch (c) {
        case u'&':
            result += u"&amp;";
            break;
        case u'<':
            result += u"&lt;";
            break;
        case u'>':
            result += u"&gt;";
            break;
        case u'\r':
            result += u"<br />";
            break;
        default:
            result += c;
        }
    }
    return result;
}

// Writes a span for each run that has a style.
Value asCss(Session& /*session*/, Arguments in) {
    const std::u16string text = in[0].asText();
    if (in[0].styles().empty()) {
        return Value::text(text);
    }
    std::u16string result;
    size_t start = 0;
    for (const StyledRun& run : in[0].styles()) {
        const std::u16string part = escaped(text.substr(start, run.end - start));
        const std::u16string style = css(run.style);
        if (style.empty()) {
            result += part;
        } else {
            result.append(u"<span style=\"").append(style).append(u"\">").append(part).append(u"</span>");
        }
        start = run.end;
    }
    return Value::text(result);
}

// Writes the styles with the ranges of characters that have them, counted from 1, and then the text.
Value asSvg(Session& /*session*/, Arguments in) {
    const std::u16string text = in[0].asText();
    const Characters characters(text);
    std::u16string result = u"<stylelist>";
    size_t start = 0;
    size_t number = 0;
    for (const StyledRun& run : in[0].styles()) {
        result += u"<style#" + Number(static_cast<int64_t>(number++)).toText() + u">" + css(run.style) +
                  u"\"begin: " + Number(static_cast<int64_t>(characters.characterAt(start) + 1)).toText() +
                  u", end: " + Number(static_cast<int64_t>(characters.characterAt(run.end))).toText() +
                  u"\"</style>";
        start = run.end;
    }
    return Value::text(result + u"</stylelist><data>" + escaped(text) + u"</data>");
}

// FileMaker counts these among the functions of texts.
constexpr Builtin kConversions[] = {
    {u"GetAsCSS ( text )", asCss, "Writes a text with its styles as web pages do."},
    {u"GetAsSVG ( text )", asSvg, "Writes a text with its styles as drawings do."},
};

constexpr Builtin kFunctions[] = {
    {u"RGB ( red ; green ; blue )", rgb, "Returns the number of a colour."},
    {u"TextColor ( text ; color )", textColor, "Gives a text a colour."},
    {u"TextColorRemove ( text {; color } )", textColorRemove, "Removes the colours, or one, from a text."},
    {u"TextFont ( text ; fontName {; fontScript } )", textFont, "Gives a text a font."},
    {u"TextFontRemove ( text {; fontToRemove ; fontScript } )", textFontRemove,
     "Removes the fonts, or one, from a text."},
    {u"TextFormatRemove ( text )", textFormatRemove, "Removes all styles from a text."},
    {u"TextSize ( text ; fontSize )", textSize, "Gives a text a size."},
    {u"TextSizeRemove ( text {; sizeToRemove } )", textSizeRemove, "Removes the sizes, or one, from a text."},
    {u"TextStyleAdd ( text ; styles )", textStyleAdd, "Gives a text styles."},
    {u"TextStyleRemove ( text ; styles )", textStyleRemove, "Removes styles from a text."},
};

} // namespace

std::span<const Builtin> styledTextFunctions() {
    return kConversions;
}

std::span<const Builtin> textFormattingFunctions() {
    return kFunctions;
}

} // namespace host

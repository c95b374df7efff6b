#include "host/wrapper/host_styles.h"

#include "host/wrapper/fonts.h"
#include "host/wrapper/objects.h"

#include <limits>

namespace host {

namespace {

// The faces of the interface have the numbers of the calculation language's constants.
TextStyle styleOf(const CharacterStyleObject& object) {
    TextStyle style;
    if (object.hasFont) {
        const auto font = fontOf(object.font);
        style.font = font ? font->name : std::u16string();
    }
    style.size = object.hasSize ? object.size : 0;
    if (object.hasColor) {
        const ColorObject& color = object.color;
        style.color = uint32_t{color.red} << 16 | uint32_t{color.green} << 8 | color.blue;
    }
    style.faces = object.faces;
    return style;
}

CharacterStyleObject objectOf(const TextStyle& style) {
    CharacterStyleObject object;
    if (!style.font.empty()) {
        object.font = fontNumber(style.font, fmx::CharacterStyle::kFontScript_Roman);
        object.hasFont = object.font != fmx::CharacterStyle::kInvalidFont;
    }
    if (style.size > 0 && style.size <= std::numeric_limits<fmx::FontSize>::max()) {
        object.size = static_cast<fmx::FontSize>(style.size);
        object.hasSize = true;
    }
    if (style.color) {
        object.color.red = static_cast<fmx::ColorChannel>(*style.color >> 16);
        object.color.green = static_cast<fmx::ColorChannel>(*style.color >> 8);
        object.color.blue = static_cast<fmx::ColorChannel>(*style.color);
        object.hasColor = true;
    }
    if (style.faces != 0) {
        object.addFaces(static_cast<fmx::Face>(style.faces));
    }
    return object;
}

} // namespace

StyledRuns styledRuns(const StyleRuns& runs, size_t size) {
    StyledRuns result;
    for (const StyleRuns::Run& run : runs.runs()) {
        result.push_back({run.end, styleOf(run.style)});
    }
    if (!result.empty() && result.back().end < size) {
        result.push_back({size, {}});
    }
    return result;
}

StyleRuns styleRuns(const StyledRuns& runs) {
    StyleRuns result;
    size_t start = 0;
    for (const StyledRun& run : runs) {
        result.append(run.end - start, objectOf(run.style));
        start = run.end;
    }
    return result;
}

} // namespace host

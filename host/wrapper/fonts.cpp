#include "host/wrapper/fonts.h"

#include <algorithm>
#include <mutex>
#include <vector>

namespace host {

namespace {

struct Fonts {
    std::mutex mutex;
    std::vector<Font> known{
        {u"Helvetica", fmx::CharacterStyle::kFontScript_Roman}}; // the font of text without a style
};

Fonts& fonts() {
    static Fonts all;
    return all;
}

} // namespace

fmx::FontID fontNumber(const std::u16string& name, fmx::FontScript script) {
    auto& [mutex, known] = fonts();
    const std::lock_guard lock(mutex);
    const auto font = std::find_if(known.begin(), known.end(), [&](const Font& candidate) {
        return candidate.name == name && candidate.script == script;
    });
    const auto number = font - known.begin();
    if (name.empty() || number >= fmx::CharacterStyle::kInvalidFont) {
        return fmx::CharacterStyle::kInvalidFont;
    }
    if (font == known.end()) {
        known.push_back({name, script});
    }
    return static_cast<fmx::FontID>(number);
}

std::optional<Font> fontOf(fmx::FontID number) {
    auto& [mutex, known] = fonts();
    const std::lock_guard lock(mutex);
    return number < known.size() ? std::optional(known[number]) : std::nullopt;
}

} // namespace host

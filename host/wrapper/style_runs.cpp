#include "host/wrapper/style_runs.h"

#include <algorithm>

namespace host {

namespace {

using fmx::CharacterStyle;
using fmx::Face;

constexpr Face kAllFaces = CharacterStyle::kFace_AllStyles;
// Upper, lower and title case share two bits: a character has one of them.
constexpr Face kCases = CharacterStyle::kFace_Titlecase;

constexpr fmx::FontSize kStandardSize = 12;

Face united(Face faces, Face more) {
    const Face kept = (more & kCases) == 0 ? faces : static_cast<Face>(faces & ~kCases);
    return static_cast<Face>(kept | more);
}

// Returns the bits of [faces] without those in [fewer].
Face without(Face faces, Face fewer) {
    return static_cast<Face>(faces & ~fewer);
}

} // namespace

CharacterStyleObject CharacterStyleObject::standard() {
    CharacterStyleObject style;
    style.size = kStandardSize;
    style.hasFont = style.hasSize = style.hasColor = true;
    style.statedFaces = kAllFaces;
    return style;
}

void CharacterStyleObject::setFaces(Face only) {
    faces = only & kAllFaces;
    statedFaces = kAllFaces;
}

void CharacterStyleObject::addFaces(Face more) {
    faces = united(faces, more & kAllFaces);
    statedFaces = static_cast<Face>(statedFaces | ((more & kCases) == 0 ? more : more | kCases)) & kAllFaces;
}

void CharacterStyleObject::dropFaces(Face fewer) {
    const Face dropped = (fewer & kCases) == 0 ? fewer : static_cast<Face>(fewer | kCases);
    faces = without(faces, dropped);
    statedFaces = without(statedFaces, dropped);
}

bool CharacterStyleObject::hasFaces(Face wanted) const {
    const Face wantedCase = wanted & kCases;
    const Face others = without(wanted, kCases);
    return wanted == CharacterStyle::kFace_Plain
               ? statedFaces != 0 && faces == 0
               : (faces & others) == others && (wantedCase == 0 || (faces & kCases) == wantedCase);
}

void CharacterStyleObject::overlay(const CharacterStyleObject& other) {
    if (other.hasFont) {
        font = other.font;
        hasFont = true;
    }
    if (other.hasSize) {
        size = other.size;
        hasSize = true;
    }
    if (other.hasColor) {
        color = other.color;
        hasColor = true;
    }
    faces = static_cast<Face>(without(faces, other.statedFaces) | other.faces);
    statedFaces |= other.statedFaces;
}

void CharacterStyleObject::forget(const CharacterStyleObject& other) {
    hasFont = hasFont && !(other.hasFont && font == other.font);
    hasSize = hasSize && !(other.hasSize && size == other.size);
    hasColor = hasColor && !(other.hasColor && color == other.color);
    dropFaces(faces & other.faces & without(kAllFaces, kCases));
    if ((other.faces & kCases) != 0 && (faces & kCases) == (other.faces & kCases)) {
        dropFaces(kCases);
    }
}

bool operator==(const CharacterStyleObject& left, const CharacterStyleObject& right) {
    return left.hasFont == right.hasFont && left.hasSize == right.hasSize &&
           left.hasColor == right.hasColor && left.statedFaces == right.statedFaces &&
           left.faces == right.faces && (!left.hasFont || left.font == right.font) &&
           (!left.hasSize || left.size == right.size) && (!left.hasColor || left.color == right.color);
}

CharacterStyleObject StyleRuns::at(size_t position) const {
    CharacterStyleObject style = CharacterStyleObject::standard();
    const auto run =
        std::upper_bound(runs_.begin(), runs_.end(), position,
                         [](size_t wanted, const Run& candidate) { return wanted < candidate.end; });
    if (run != runs_.end()) {
        style.overlay(run->style);
    }
    return style;
}

// Splits or extends the runs so that one ends at a position; returns the run that starts there.
StyleRuns::Runs::iterator StyleRuns::splitAt(size_t position) {
    const size_t end = runs_.empty() ? 0 : runs_.back().end;
    if (position > end) {
        runs_.push_back({position, {}});
    }
    const auto run =
        std::lower_bound(runs_.begin(), runs_.end(), position,
                         [](const Run& candidate, size_t wanted) { return candidate.end < wanted; });
    if (position == 0) {
        return runs_.begin();
    }
    return run->end == position ? run + 1 : runs_.insert(run, {position, run->style}) + 1;
}

void StyleRuns::apply(const CharacterStyleObject& style, size_t position, size_t count) {
    if (count == 0 || style.saysNothing()) {
        return;
    }
    splitAt(position + count);
    for (auto run = splitAt(position); run != runs_.end() && run->end <= position + count; ++run) {
        run->style.overlay(style);
    }
    join();
}

void StyleRuns::forget(const CharacterStyleObject& style) {
    for (Run& run : runs_) {
        run.style.forget(style);
    }
    join();
}

StyleRuns StyleRuns::part(size_t position, size_t count) const {
    StyleRuns result;
    size_t start = 0;
    for (const Run& run : runs_) {
        const size_t from = std::max(start, position);
        const size_t to = std::min(run.end, position + count);
        if (from < to) {
            result.append(to - from, run.style);
        }
        start = run.end;
    }
    return result;
}

void StyleRuns::insert(size_t position, const StyleRuns& inserted, size_t count) {
    if (count == 0 || (runs_.empty() && inserted.runs_.empty())) {
        return;
    }
    StyleRuns result = part(0, position);
    result.append(position - (result.runs_.empty() ? 0 : result.runs_.back().end), {});
    for (const Run& run : inserted.runs_) {
        result.append(position + run.end - (result.runs_.empty() ? 0 : result.runs_.back().end), run.style);
    }
    result.append(position + count - (result.runs_.empty() ? 0 : result.runs_.back().end), {});
    const size_t end = runs_.empty() ? 0 : runs_.back().end;
    if (end > position) {
        for (Run run : part(position, end - position).runs_) {
            run.end += position + count;
            result.runs_.push_back(run);
        }
    }
    result.join();
    *this = std::move(result);
}

void StyleRuns::erase(size_t position, size_t count) {
    for (Run& run : runs_) {
        run.end -= std::min(count, run.end - std::min(run.end, position));
    }
    join();
}

void StyleRuns::append(size_t count, const CharacterStyleObject& style) {
    if (count != 0) {
        runs_.push_back({(runs_.empty() ? 0 : runs_.back().end) + count, style});
    }
}

// Removes empty runs and, at the end, runs without a style; joins neighbours of equal style.
void StyleRuns::join() {
    Runs kept;
    for (const Run& run : runs_) {
        if (run.end == (kept.empty() ? 0 : kept.back().end)) {
            continue;
        }
        if (!kept.empty() && kept.back().style == run.style) {
            kept.back().end = run.end;
        } else {
            kept.push_back(run);
        }
    }
    while (!kept.empty() && kept.back().style.saysNothing()) {
        kept.pop_back();
    }
    runs_ = std::move(kept);
}

} // namespace host

#include "host/values/text_style.h"

#include <algorithm>

namespace host {

void appendRuns(StyleRuns& runs, size_t before, const StyleRuns& added, size_t size) {
    if (runs.empty() && added.empty()) {
        return;
    }
    if (runs.empty() && before > 0) {
        runs.push_back({before, {}});
    }
    for (const StyleRun& run : added) {
        runs.push_back({before + run.end, run.style});
    }
    if (added.empty() && size > 0) {
        runs.push_back({before + size, {}});
    }
}

StyleRuns slicedRuns(const StyleRuns& runs, size_t begin, size_t end) {
    StyleRuns result;
    size_t start = 0;
    for (const StyleRun& run : runs) {
        const size_t from = std::max(start, begin);
        const size_t to = std::min(run.end, end);
        if (from < to) {
            result.push_back({to - begin, run.style});
        }
        start = run.end;
    }
    return result;
}

StyleRuns simplifiedRuns(StyleRuns runs) {
    StyleRuns result;
    for (StyleRun& run : runs) {
        if (!result.empty() && result.back().style == run.style) {
            result.back().end = run.end;
        } else {
            result.push_back(std::move(run));
        }
    }
    const bool isPlain = std::all_of(result.begin(), result.end(),
                                     [](const StyleRun& run) { return run.style == TextStyle(); });
    return isPlain ? StyleRuns() : result;
}

} // namespace host

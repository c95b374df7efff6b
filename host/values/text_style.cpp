#include "host/values/text_style.h"

#include <algorithm>

namespace host {

void appendRuns(StyledRuns& runs, size_t before, const StyledRuns& added, size_t size) {
    if (runs.empty() && added.empty()) {
        return;
    }
    if (runs.empty() && before > 0) {
        runs.push_back({before, {}});
    }
    for (const StyledRun& run : added) {
        runs.push_back({before + run.end, run.style});
    }
    if (added.empty() && size > 0) {
        runs.push_back({before + size, {}});
    }
}

StyledRuns slicedRuns(const StyledRuns& runs, size_t begin, size_t end) {
    StyledRuns result;
    size_t start = 0;
    for (const StyledRun& run : runs) {
        const size_t from = std::max(start, begin);
        const size_t to = std::min(run.end, end);
        if (from < to) {
            result.push_back({to - begin, run.style});
        }
        start = run.end;
    }
    return result;
}

StyledRuns simplifiedRuns(StyledRuns runs) {
    StyledRuns result;
    for (StyledRun& run : runs) {
        if (!result.empty() && result.back().style == run.style) {
            result.back().end = run.end;
        } else {
            result.push_back(std::move(run));
        }
    }
    const bool isPlain = std::all_of(result.begin(), result.end(),
                                     [](const StyledRun& run) { return run.style == TextStyle(); });
    return isPlain ? StyledRuns() : result;
}

} // namespace host

#include "host/calc/suggest.h"

#include "host/calc/external_function.h"
#include "host/values/text.h"

#include <algorithm>
#include <vector>

namespace host {

namespace {

// The number of characters by which names are compared, as the time grows with the square of the length.
constexpr size_t kCompared = 64;

// The least number of characters that are taken for the beginning of a name.
constexpr size_t kBeginning = 2;

// Returns the least number of insertions, deletions and replacements of a character, and swaps of neighbours,
// that turn [a] into [b].
size_t editDistance(std::u16string_view a, std::u16string_view b) {
    std::vector<size_t> beforeLast(b.size() + 1);
    std::vector<size_t> last(b.size() + 1);
    std::vector<size_t> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j) {
        last[j] = j;
    }
    for (size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            }
        }
        std::swap(beforeLast, last);
        std::swap(last, row);
    }
    return last[b.size()];
}

} // namespace

Suggestion::Suggestion(std::u16string_view misspelt)
    : misspelt_(foldName(misspelt.substr(0, kCompared))),
      bestDistance_(std::max<size_t>(1, misspelt_.size() / 3) + 1) {}

void Suggestion::consider(std::u16string_view candidate) {
    const std::u16string folded = foldName(candidate.substr(0, kCompared));
    const bool isLonger = misspelt_.size() >= kBeginning && folded.starts_with(misspelt_);
    if (bestIsLonger_ && !isLonger) {
        return;
    }
    const size_t distance = isLonger ? folded.size() : editDistance(misspelt_, folded);
    if (distance < bestDistance_ || isLonger != bestIsLonger_) {
        bestDistance_ = distance;
        bestIsLonger_ = isLonger;
        best_ = candidate;
    }
}

std::string Suggestion::question() const {
    return best_.empty() ? "" : "; did you mean " + toUtf8(best_) + "?";
}

} // namespace host

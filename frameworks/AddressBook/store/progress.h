#pragma once

#include <cstddef>
#include <functional>

namespace addressbook {

// A callback for the progress of long work: called with the part that is done, from 0 to 1. May be empty. It
// may throw an exception other than StoreError to stop the work, which then has changed nothing.
using Progress = std::function<void(double part)>;

// Reports that [done] of [all] items are done, where all items are the share of the work between [from] and
// [to]. Calls [progress] only for some of the items, so that it may be called for each of very many.
inline void tellProgress(const Progress& progress, std::size_t done, std::size_t all, double from = 0,
                         double to = 1) {
    constexpr std::size_t kOften = 64;
    if (progress && done % kOften == 0) {
        progress(all == 0 ? to : from + (to - from) * static_cast<double>(done) / static_cast<double>(all));
    }
}

// Returns the callback for a share of the work, between [from] and [to], which reports to [whole]. It refers
// to [whole].
inline Progress share(const Progress& whole, double from, double to) {
    if (!whole) {
        return {};
    }
    return [=, &whole](double part) { whole(from + (to - from) * part); };
}

} // namespace addressbook

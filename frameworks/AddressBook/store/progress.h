#pragma once

#include <cstddef>
#include <functional>

namespace addressbook {

// Told how much of long work is done, from 0 to 1. May be empty. It may throw something that is no StoreError
// to stop the work, which then has changed nothing.
using Progress = std::function<void(double part)>;

// Tells that [done] of [all] are done, which are the share of the work from [from] to [to]; now and then only, so that
// it may be called for each of very many.
inline void tellProgress(const Progress& progress, std::size_t done, std::size_t all, double from = 0,
                         double to = 1) {
    constexpr std::size_t kOften = 64;
    if (progress && done % kOften == 0) {
        progress(all == 0 ? to : from + (to - from) * static_cast<double>(done) / static_cast<double>(all));
    }
}

// Returns what tells of a share of the work, from [from] to [to], to whom the whole is told. It refers to [whole].
inline Progress share(const Progress& whole, double from, double to) {
    if (!whole) {
        return {};
    }
    return [=, &whole](double part) { whole(from + (to - from) * part); };
}

} // namespace addressbook

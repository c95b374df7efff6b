#pragma once

// Long work that its user stops.

#include "frameworks/AddressBook/store/progress.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace addressbook::test {

// Does [work] again and again until it is done: it is stopped when it tells its progress, each time one telling later.
// [look] looks at what is there after each stop. Returns how often it was stopped.
inline int stopEverywhere(const std::function<void(const Progress&)>& work,
                          const std::function<void()>& look) {
    struct Stopped {};
    for (int stops = 0;; ++stops) {
        SCOPED_TRACE("stopped after " + std::to_string(stops));
        int left = stops;
        try {
            work([&](double) {
                if (left-- == 0) {
                    throw Stopped();
                }
            });
            return stops;
        } catch (const Stopped&) {
            look();
        }
    }
}

} // namespace addressbook::test

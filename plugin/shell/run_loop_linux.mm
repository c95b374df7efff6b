#import "plugin/shell/run_loop.h"

#include "plugin/support/guard.h"
#include <cstdio>
#include <string>

namespace koru {

void turnRunLoop() {
    const auto turn = [] {
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate distantPast]];
    };
    // An exception ends this turn only; its reason is told in a line of its own, without what a log says of crashes.
    guarded(turn, [](NSException* exception) {
        const std::string line = std::string("Velocard: ") + [[exception description] UTF8String] + "\n";
        std::fputs(line.c_str(), stderr);
    });
}

} // namespace koru

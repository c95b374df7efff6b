#import "plugin/shell/run_loop.h"

#include "plugin/support/guard.h"

namespace koru {

void turnRunLoop() {
    const auto turn = [] {
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate distantPast]];
    };
    // As an application would: what a run loop's work raises is logged, and the next turn goes on.
    guarded(turn, [](NSException* exception) { NSLog(@"%@", [exception description]); });
}

} // namespace koru

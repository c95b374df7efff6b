#import "plugin/shell/run_loop.h"

#include "plugin/support/guard.h"

namespace koru {

void turnRunLoop() {
    const auto turn = [] {
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate distantPast]];
    };
    // Exceptions are logged, as an application does, and the next turn goes on.
    guarded(turn, [](NSException* exception) { NSLog(@"%@", [exception description]); });
}

} // namespace koru

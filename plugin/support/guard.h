#pragma once

#include "plugin/support/objc_guard.h"
#import <Foundation/Foundation.h>

namespace koru {

// Runs the work. An NSException in it is passed to [caught], a callable that takes it; everything else passes
// through (see koruGuard). The work must not contain an autorelease pool that the exception would unwind, as
// draining that pool would release the exception.
template <typename Work, typename Caught>
void guarded(Work work, Caught caught) {
    struct Both {
        Work& work;
        Caught& caught;
    } both{work, caught};
    koruGuard([](void* context) { static_cast<Both*>(context)->work(); },
              [](void* context, void* exception) {
                  static_cast<Both*>(context)->caught(static_cast<NSException*>(exception));
              },
              &both);
}

} // namespace koru

#pragma once

#include "plugin/support/objc_guard.h"
#import <Foundation/Foundation.h>

namespace koru {

// Runs the work; a platform exception in it goes to caught, a callable that is given the NSException;
// everything else passes (see koruGuard). The work must not make an autorelease pool that such an exception
// would drain on its way.
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

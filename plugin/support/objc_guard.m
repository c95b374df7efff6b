// Plain Objective-C on purpose, and the only place that catches an NSException by type: in Objective-C++ such
// a handler crashes GCC's unwinder, and a handler without a type cannot tell an NSException from a C++ one.

#include "plugin/support/objc_guard.h"
#import <Foundation/Foundation.h>

void koruGuard(KoruGuardedWork work, KoruExceptionHandler caught, void* context) {
    @try {
        work(context);
    } @catch (NSException* exception) {
        caught(context, exception);
    }
}

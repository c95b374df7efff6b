// Plain Objective-C on purpose, and the only place that names a platform exception: a handler that names one
// in Objective-C++ crashes the unwinder of GCC, and a catch that names none cannot tell it from a C++
// exception.

#include "plugin/support/objc_guard.h"
#import <Foundation/Foundation.h>

void koruGuard(KoruGuardedWork work, KoruExceptionHandler caught, void* context) {
    @try {
        work(context);
    } @catch (NSException* exception) {
        caught(context, exception);
    }
}

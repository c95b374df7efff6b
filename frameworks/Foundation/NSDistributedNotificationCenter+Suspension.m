// A centre that is connected to no notification server has no notifications to hold back, and a connection
// starts unsuspended: ending the suspension then is nobody else's business. Foundation would start the server
// for it, wait up to ten seconds and raise where there is none.

#import <Foundation/Foundation.h>
#import <objc/runtime.h>

@implementation NSDistributedNotificationCenter (Suspension)

// Takes the place of -setSuspended:, which is found under this name from then on.
- (void)setSuspendedWhenConnected:(BOOL)suspended {
    [_centerLock lock];
    const BOOL nothingToSay = !suspended && _remote == nil;
    if (nothingToSay) {
        _suspended = NO;
    }
    [_centerLock unlock];
    if (!nothingToSay) {
        [self setSuspendedWhenConnected:suspended];
    }
}

+ (void)load {
    method_exchangeImplementations(class_getInstanceMethod(self, @selector(setSuspended:)),
                                   class_getInstanceMethod(self, @selector(setSuspendedWhenConnected:)));
}

@end

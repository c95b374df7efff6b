// A distributed notification center that is not connected to a notification server has no notifications to
// suspend, and a new connection is not suspended: ending the suspension then needs no server. GNUstep would
// start the server for it, wait up to ten seconds, and raise where there is none.

#import <Foundation/Foundation.h>
#import <objc/runtime.h>

@implementation NSDistributedNotificationCenter (Suspension)

// Replaces -setSuspended:, whose implementation then has this name.
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

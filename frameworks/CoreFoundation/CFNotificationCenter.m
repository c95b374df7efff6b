#include <CoreFoundation/CFNotificationCenter.h>
#import <Foundation/Foundation.h>

#include "frameworks/CoreFoundation/pool.h"

// A callback and what it was registered for.
@interface CFObserver : NSObject {
  @public
    const void* _observer;
    CFNotificationCallback _callBack;
    NSString* _name;     // nil: any
    const void* _object; // NULL: any
}
- (void)notify:(NSNotification*)notification;
@end

@implementation CFObserver

- (void)dealloc {
    [_name release];
    [super dealloc];
}

- (void)notify:(NSNotification*)notification {
    _callBack(CFNotificationCenterGetLocalCenter(), (void*)_observer, (CFStringRef)[notification name],
              [notification object], (CFDictionaryRef)[notification userInfo]);
}

@end

// All registered observers, retained here, as Foundation's center does not retain them.
static NSMutableArray* observers = nil;

CFNotificationCenterRef CFNotificationCenterGetLocalCenter(void) {
    return (CFNotificationCenterRef)[NSNotificationCenter defaultCenter];
}

void CFNotificationCenterAddObserver(CFNotificationCenterRef center, const void* observer,
                                     CFNotificationCallback callBack, CFStringRef name, const void* object,
                                     CFNotificationSuspensionBehavior suspensionBehavior) {
    (void)suspensionBehavior;
    CFObserver* added = [[CFObserver alloc] init];
    added->_observer = observer;
    added->_callBack = callBack;
    added->_name = [(NSString*)name copy];
    added->_object = object;
    @synchronized([CFObserver class]) {
        if (observers == nil) {
            observers = [[NSMutableArray alloc] init];
        }
        [observers addObject:added];
    }
    IN_POOL([(NSNotificationCenter*)center addObserver:added
                                              selector:@selector(notify:)
                                                  name:(NSString*)name
                                                object:(id)object]);
    [added release];
}

void CFNotificationCenterRemoveObserver(CFNotificationCenterRef center, const void* observer,
                                        CFStringRef name, const void* object) {
    @synchronized([CFObserver class]) {
        for (NSUInteger i = [observers count]; i-- > 0;) {
            CFObserver* one = [observers objectAtIndex:i];
            if (one->_observer != observer || (object != NULL && one->_object != object) ||
                (name != NULL && ![one->_name isEqual:(NSString*)name])) {
                continue;
            }
            IN_POOL([(NSNotificationCenter*)center removeObserver:one]);
            [observers removeObjectAtIndex:i];
        }
    }
}

void CFNotificationCenterRemoveEveryObserver(CFNotificationCenterRef center, const void* observer) {
    CFNotificationCenterRemoveObserver(center, observer, NULL, NULL);
}

void CFNotificationCenterPostNotification(CFNotificationCenterRef center, CFStringRef name,
                                          const void* object, CFDictionaryRef userInfo,
                                          Boolean deliverImmediately) {
    (void)deliverImmediately;
    IN_POOL([(NSNotificationCenter*)center postNotificationName:(NSString*)name
                                                         object:(id)object
                                                       userInfo:(NSDictionary*)userInfo]);
}

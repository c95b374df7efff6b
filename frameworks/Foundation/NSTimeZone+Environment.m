// The system's time zone is that of the environment variable TZ if it is set, as on macOS and in the C
// library. GNUstep always takes the machine's.

#import <Foundation/Foundation.h>
#import <objc/runtime.h>
#include <stdlib.h>

@implementation NSTimeZone (Environment)

// Replaces +systemTimeZone, whose implementation then has this name.
+ (NSTimeZone*)environmentOrSystemTimeZone {
    const char* name = getenv("TZ");
    NSTimeZone* zone = nil;
    if (name != NULL && *name != '\0') {
        zone = [NSTimeZone timeZoneWithName:[NSString stringWithUTF8String:*name == ':' ? name + 1 : name]];
    }
    return zone != nil ? zone : [self environmentOrSystemTimeZone];
}

+ (void)load {
    method_exchangeImplementations(class_getClassMethod(self, @selector(systemTimeZone)),
                                   class_getClassMethod(self, @selector(environmentOrSystemTimeZone)));
}

@end

// The system's time zone is that of TZ where it is set, as on macOS and in the C library; Foundation here
// always takes the machine's.

#import <Foundation/Foundation.h>
#import <objc/runtime.h>
#include <stdlib.h>

@implementation NSTimeZone (Environment)

// Takes the place of +systemTimeZone, which is found under this name from then on.
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

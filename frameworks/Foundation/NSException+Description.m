// The description of an exception is its reason, as on macOS, so that users see neither address nor user
// info.

#import <Foundation/Foundation.h>

@implementation NSException (Description)

- (NSString*)description {
    return _e_reason != nil ? [self reason] : [self name]; // -reason never returns nil, but a default text
}

@end

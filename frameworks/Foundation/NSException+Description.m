// An exception describes itself by its reason, as on macOS: no address and no user info in what people read.

#import <Foundation/Foundation.h>

@implementation NSException (Description)

- (NSString*)description {
    return _e_reason != nil ? [self reason] : [self name]; // -reason makes one up for nil
}

@end

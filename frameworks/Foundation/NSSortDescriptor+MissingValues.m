// Sorting by a property that not all objects have: as on macOS, an object without a value comes before those
// with one (after them in descending order), and two without are equal. GNUstep's implementation raises when
// one object has no value, and treats it as equal when the other one has none.

#import <Foundation/Foundation.h>
#include <objc/runtime.h>

typedef NSComparisonResult (*Compare)(id, SEL, id, id);

static Compare compareValues;

static NSComparisonResult compareWithNil(id self, SEL command, id one, id other) {
    NSString* key = [self key];
    if (key == nil) {
        return compareValues(self, command, one, other);
    }
    const BOOL hasOne = [one valueForKeyPath:key] != nil;
    const BOOL hasOther = [other valueForKeyPath:key] != nil;
    if (hasOne && hasOther) {
        return compareValues(self, command, one, other);
    }
    if (hasOne == hasOther) {
        return NSOrderedSame;
    }
    return hasOther == [self ascending] ? NSOrderedAscending : NSOrderedDescending;
}

@implementation NSSortDescriptor (MissingValues)

+ (void)load {
    Method method = class_getInstanceMethod(self, @selector(compareObject:toObject:));
    compareValues = (Compare)(void (*)(void))method_getImplementation(method);
    method_setImplementation(method, (IMP)(void (*)(void))compareWithNil);
}

@end

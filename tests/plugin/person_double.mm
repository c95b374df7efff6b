#include "tests/plugin/person_double.h"

PersonDoubleScript personDouble;
ListDoubleScript listDouble;

void resetPersonDouble() {
    personDouble = {};
    listDouble = {};
}

@implementation VelocardPersonDouble
- (BOOL)isReadOnly {
    return personDouble.readOnly;
}
- (id)valueForProperty:(NSString*)property {
    if (personDouble.failsReading) {
        [NSException raise:NSInternalInconsistencyException format:@"cannot read %@", property];
    }
    return personDouble.values ? personDouble.values.get() : [super valueForProperty:property];
}
- (BOOL)setValue:(id)value forProperty:(NSString*)property {
    ++personDouble.writes;
    personDouble.taken = koru::Retained<ABMultiValue>::retain(value);
    if (personDouble.failsWriting) {
        [NSException raise:NSInternalInconsistencyException format:@"cannot write %@", property];
    }
    if (personDouble.refuses) {
        return NO;
    }
    return personDouble.values ? YES : [super setValue:value forProperty:property];
}
@end

@implementation VelocardListDouble
- (id)mutableCopyWithZone:(NSZone*)zone {
    VelocardListDouble* copy = [[VelocardListDouble allocWithZone:zone] init];
    for (NSUInteger i = 0; i < [self count]; ++i) {
        id value = [super valueAtIndex:i];
        [copy addValue:value withLabel:[super labelAtIndex:i]];
    }
    return copy;
}
- (NSUInteger)indexForIdentifier:(NSString*)identifier {
    // Copies have identifiers of their own; an entry is named by its place here.
    const NSInteger place = [identifier integerValue];
    return place < static_cast<NSInteger>([self count]) ? static_cast<NSUInteger>(place)
                                                        : static_cast<NSUInteger>(NSNotFound);
}
- (id)valueAtIndex:(NSUInteger)index {
    if (listDouble.failsReading) {
        [NSException raise:NSRangeException format:@"no entry"];
    }
    return [super valueAtIndex:index];
}
- (NSString*)labelAtIndex:(NSUInteger)index {
    return listDouble.hidesLabels ? nil : [super labelAtIndex:index];
}
- (BOOL)replaceValueAtIndex:(NSUInteger)index withValue:(id)value {
    return !listDouble.refusesValues && [super replaceValueAtIndex:index withValue:value];
}
- (BOOL)replaceLabelAtIndex:(NSUInteger)index withLabel:(NSString*)label {
    return !listDouble.refusesLabels && [super replaceLabelAtIndex:index withLabel:label];
}
- (BOOL)removeValueAndLabelAtIndex:(NSUInteger)index {
    return !listDouble.refusesRemoving && [super removeValueAndLabelAtIndex:index];
}
@end

@implementation VelocardFailingAddress
- (NSUInteger)count {
    return 1;
}
- (id)objectForKey:(id)key {
    [NSException raise:NSInternalInconsistencyException format:@"cannot read %@", key];
    return nil;
}
- (NSEnumerator*)keyEnumerator {
    return [[NSArray array] objectEnumerator];
}
@end

// The C functions of multi-values, which call their classes.

#import <AddressBook/AddressBook.h>

#include "frameworks/CoreFoundation/pool.h"

ABMultiValueRef ABMultiValueCreate(void) {
    return OWNED([[[ABMultiValue alloc] init] autorelease]);
}

CFIndex ABMultiValueCount(ABMultiValueRef multiValue) {
    return (CFIndex)[(ABMultiValue*)multiValue count];
}

CFTypeRef ABMultiValueCopyValueAtIndex(ABMultiValueRef multiValue, CFIndex index) {
    return OWNED([(ABMultiValue*)multiValue valueAtIndex:(NSUInteger)index]);
}

CFStringRef ABMultiValueCopyLabelAtIndex(ABMultiValueRef multiValue, CFIndex index) {
    return OWNED([(ABMultiValue*)multiValue labelAtIndex:(NSUInteger)index]);
}

CFStringRef ABMultiValueCopyPrimaryIdentifier(ABMultiValueRef multiValue) {
    return OWNED([(ABMultiValue*)multiValue primaryIdentifier]);
}

CFIndex ABMultiValueIndexForIdentifier(ABMultiValueRef multiValue, CFStringRef identifier) {
    NSUInteger index;
    IN_POOL(index = [(ABMultiValue*)multiValue indexForIdentifier:(NSString*)identifier]);
    return index == NSNotFound ? kCFNotFound : (CFIndex)index;
}

CFStringRef ABMultiValueCopyIdentifierAtIndex(ABMultiValueRef multiValue, CFIndex index) {
    return OWNED([(ABMultiValue*)multiValue identifierAtIndex:(NSUInteger)index]);
}

ABPropertyType ABMultiValuePropertyType(ABMultiValueRef multiValue) {
    ABPropertyType type;
    IN_POOL(type = [(ABMultiValue*)multiValue propertyType]);
    return type;
}

ABMultiValueRef ABMultiValueCreateCopy(ABMultiValueRef multiValue) {
    return OWNED([[(ABMultiValue*)multiValue copy] autorelease]);
}

ABMutableMultiValueRef ABMultiValueCreateMutableCopy(ABMultiValueRef multiValue) {
    return OWNED([[(ABMultiValue*)multiValue mutableCopy] autorelease]);
}

ABMutableMultiValueRef ABMultiValueCreateMutable(void) {
    return OWNED([[[ABMutableMultiValue alloc] init] autorelease]);
}

bool ABMultiValueAdd(ABMutableMultiValueRef multiValue, CFTypeRef value, CFStringRef label,
                     CFStringRef* outIdentifier) {
    return ABMultiValueInsert(multiValue, value, label, ABMultiValueCount(multiValue), outIdentifier);
}

bool ABMultiValueInsert(ABMutableMultiValueRef multiValue, CFTypeRef value, CFStringRef label, CFIndex index,
                        CFStringRef* outIdentifier) {
    CFStringRef identifier = OWNED([(ABMutableMultiValue*)multiValue insertValue:(id)value
                                                                       withLabel:(NSString*)label
                                                                         atIndex:(NSUInteger)index]);
    const bool added = identifier != NULL;
    if (outIdentifier != NULL) {
        *outIdentifier = identifier;
    } else if (added) {
        CFRelease(identifier);
    }
    return added;
}

bool ABMultiValueRemove(ABMutableMultiValueRef multiValue, CFIndex index) {
    BOOL removed;
    IN_POOL(removed = [(ABMutableMultiValue*)multiValue removeValueAndLabelAtIndex:(NSUInteger)index]);
    return removed;
}

bool ABMultiValueReplaceValue(ABMutableMultiValueRef multiValue, CFTypeRef value, CFIndex index) {
    BOOL replaced;
    IN_POOL(replaced = [(ABMutableMultiValue*)multiValue replaceValueAtIndex:(NSUInteger)index
                                                                   withValue:(id)value]);
    return replaced;
}

bool ABMultiValueReplaceLabel(ABMutableMultiValueRef multiValue, CFStringRef label, CFIndex index) {
    BOOL replaced;
    IN_POOL(replaced = [(ABMutableMultiValue*)multiValue replaceLabelAtIndex:(NSUInteger)index
                                                                   withLabel:(NSString*)label]);
    return replaced;
}

bool ABMultiValueSetPrimaryIdentifier(ABMutableMultiValueRef multiValue, CFStringRef identifier) {
    BOOL set;
    IN_POOL(set = [(ABMutableMultiValue*)multiValue setPrimaryIdentifier:(NSString*)identifier]);
    return set;
}

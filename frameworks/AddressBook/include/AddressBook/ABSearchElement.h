#pragma once

#import <AddressBook/ABGlobals.h>
#import <AddressBook/ABTypedefs.h>
#import <Foundation/Foundation.h>

@class ABRecord;

// A search: one condition (made by ABPerson and ABGroup) or several joined.
@interface ABSearchElement : NSObject {
  @private
    void* _query;
}

// Raises NSInvalidArgumentException when there are no children.
+ (ABSearchElement*)searchElementForConjunction:(ABSearchConjunction)conjunction children:(NSArray*)children;

// Raises NSInvalidArgumentException for nil.
- (BOOL)matchesRecord:(ABRecord*)record;

@end

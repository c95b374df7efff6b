#pragma once

#import <AddressBook/ABGlobals.h>
#import <AddressBook/ABTypedefs.h>
#import <Foundation/Foundation.h>

@class ABRecord;

// A search: one condition (made by ABPerson or ABGroup), or several searches joined.
@interface ABSearchElement : NSObject {
  @private
    void* _query;
}

// Returns a search that joins others. Raises NSInvalidArgumentException when there are no children.
+ (ABSearchElement*)searchElementForConjunction:(ABSearchConjunction)conjunction children:(NSArray*)children;

// Returns whether a record meets the search. Raises NSInvalidArgumentException for nil.
- (BOOL)matchesRecord:(ABRecord*)record;

@end

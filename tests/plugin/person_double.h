#pragma once

#include "plugin/support/retained.h"
#import <AddressBook/AddressBook.h>

// The behaviour of a person double, and what was recorded. Reset at the start of each test
// (resetPersonDouble).
struct PersonDoubleScript {
    bool readOnly = false;
    bool refuses = false;               // setValue:forProperty: returns NO
    bool failsReading = false;          // valueForProperty: raises
    bool failsWriting = false;          // setValue:forProperty: raises
    koru::Retained<NSObject> values;    // every property's value; nil: those of a real person
    koru::Retained<ABMultiValue> taken; // the last list given to setValue:forProperty:
    int writes = 0;                     // how many times it was called
};
extern PersonDoubleScript personDouble;

void resetPersonDouble();

// A person with the behaviour of the script.
@interface VelocardPersonDouble : ABPerson
@end

// The behaviour of copies of a list double.
struct ListDoubleScript {
    bool refusesValues = false;
    bool refusesLabels = false;
    bool refusesRemoving = false;
    bool hidesLabels = false;
    bool failsReading = false; // valueAtIndex: raises
};
extern ListDoubleScript listDouble;

// A list whose mutable copy has the behaviour of the script.
@interface VelocardListDouble : ABMutableMultiValue
@end

// An address whose fields cannot be read.
@interface VelocardFailingAddress : NSDictionary
@end

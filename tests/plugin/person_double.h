#pragma once

#include "plugin/support/retained.h"
#import <AddressBook/AddressBook.h>

// What a person double does and has been told; as it is at the start of each test (resetPersonDouble).
struct PersonDoubleScript {
    bool readOnly = false;
    bool refuses = false;               // setValue:forProperty: answers NO
    bool failsReading = false;          // valueForProperty: raises
    bool failsWriting = false;          // setValue:forProperty: raises
    koru::Retained<NSObject> values;    // every property's value; none is that of a real person
    koru::Retained<ABMultiValue> taken; // the list that setValue:forProperty: was given last
    int writes = 0;                     // and how often it was called
};
extern PersonDoubleScript personDouble;

void resetPersonDouble();

// A person that does as the script says.
@interface VelocardPersonDouble : ABPerson
@end

// A list's copies that refuse what the script says.
struct ListDoubleScript {
    bool refusesValues = false;
    bool refusesLabels = false;
    bool refusesRemoving = false;
    bool hidesLabels = false;
    bool failsReading = false; // valueAtIndex: raises
};
extern ListDoubleScript listDouble;

// A list whose mutable copy does as the script says.
@interface VelocardListDouble : ABMutableMultiValue
@end

// An address whose fields cannot be read.
@interface VelocardFailingAddress : NSDictionary
@end

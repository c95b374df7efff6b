#pragma once

#import <ScriptingBridge/SBObject.h>

// The elements of one kind in an application. Applications on the bus do not list them, so that an element
// can only be accessed by its id.
@interface SBElementArray : NSObject

// Returns the element with an id, whether it exists or not.
- (SBObject*)objectWithID:(id)identifier;

@end

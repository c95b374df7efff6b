#pragma once

#import <ScriptingBridge/SBObject.h>

// The elements of one kind in an application. Applications on the bus publish no list of them, so an element
// is reached by its id only.
@interface SBElementArray : NSObject

// The element with that id, whether it exists or not.
- (SBObject*)objectWithID:(id)identifier;

@end

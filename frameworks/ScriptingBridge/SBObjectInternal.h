#pragma once

#import <ScriptingBridge/SBElementArray.h>

@interface SBObject (Internal)

- (id)initWithElementIdentifier:(id)identifier;

// Returns the id by which the element was looked up; nil for an application.
- (id)elementIdentifier;

@end

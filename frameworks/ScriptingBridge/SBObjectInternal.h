#pragma once

#import <ScriptingBridge/SBElementArray.h>

@interface SBObject (Internal)

- (id)initWithElementIdentifier:(id)identifier;

// Returns the identifier of an element; nil for an application.
- (id)elementIdentifier;

@end

#pragma once

#import <ScriptingBridge/SBElementArray.h>

@interface SBObject (Internal)

- (id)initWithElementIdentifier:(id)identifier;

// The id that it was asked for by; nil for an application.
- (id)elementIdentifier;

@end

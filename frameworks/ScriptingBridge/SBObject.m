#import "frameworks/ScriptingBridge/SBObjectInternal.h"

@implementation SBObject

- (id)initWithElementIdentifier:(id)identifier {
    if ((self = [super init]) != nil) {
        _elementIdentifier = [identifier copy];
    }
    return self;
}

- (void)dealloc {
    [_elementIdentifier release];
    [super dealloc];
}

- (id)elementIdentifier {
    return _elementIdentifier;
}

@end

@implementation SBElementArray

- (SBObject*)objectWithID:(id)identifier {
    return [[[SBObject alloc] initWithElementIdentifier:identifier] autorelease];
}

@end

#pragma once

#import <Foundation/Foundation.h>

// Something in an application: made by it or by an element array, and only a reference. Whether there is such
// a thing is known to the application alone, once it is asked to do something with it.
@interface SBObject : NSObject {
  @private
    id _elementIdentifier;
}
@end

#pragma once

#import <Foundation/Foundation.h>

// A reference to an object in an application, made by the application or by an element array. Whether the
// object exists is known only to the application, when it is asked to use it.
@interface SBObject : NSObject {
  @private
    id _elementIdentifier;
}
@end

#pragma once

#include "frameworks/AppKit/codec/codec.h"

#import <AppKit/NSBitmapImageRep.h>

@interface NSBitmapImageRep (Reading)

// Like -initWithData:, with a choice of the orientation.
- (id)initWithData:(NSData*)data orientation:(appkit::Orientation)orientation;

@end
